#pragma once

#include <chrono>
#include <cstddef>
#include <memory>

#include "platform/background_queue.h"

namespace corvane {

struct ThreadPoolLimits {
    std::size_t maximumThreads = 64;
    std::chrono::milliseconds idleTime{5000};  ///< a thread without work for that long ends
};

/// A background queue on threads of its own: one for each task that would otherwise wait, up to the limit.
/// Idle threads sleep until there is work or their time is over; an idle queue has none and costs nothing.
/// The threads take no signals of the process, and have the lowest priority.
class ThreadPoolQueue final : public BackgroundQueue {
  public:
    explicit ThreadPoolQueue(ThreadPoolLimits limits = {});

    /// Stops, waiting for running tasks at most a second.
    ~ThreadPoolQueue() override;

    ThreadPoolQueue(const ThreadPoolQueue&) = delete;
    ThreadPoolQueue& operator=(const ThreadPoolQueue&) = delete;

    /// After `stop` the task is dropped. The process cannot go on when not even one thread can be started.
    void async(Task task) override;

    /// Drops waiting tasks without running them, takes no new ones, and waits for the running ones at most
    /// that long. False when some are still running: their threads go on alone and end with their task, so
    /// such a task must not outlive what it refers to, or the process must end without destroying that. Not
    /// from one of the queue's own tasks.
    bool stop(std::chrono::milliseconds limit);

    /// Threads that exist now, busy or idle.
    std::size_t threadCount() const;

  private:
    struct State;

    void addThread();

    std::shared_ptr<State> state_;
};

}  // namespace corvane
