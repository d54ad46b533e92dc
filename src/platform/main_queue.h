#pragma once

#include <chrono>
#include <functional>
#include <utility>

namespace corvane {

using Task = std::function<void()>;

/// The queue of the main thread. It is serial and not re-entrant: while one of its tasks runs, no other of
/// its tasks runs, even when the running one waits in a modal alert. Tasks due at the same time run in the
/// order in which they were added. All operations may be called on any thread and return at once; tasks run
/// on the main thread only. Tasks still waiting when the program ends are dropped without being run.
class MainQueue {
  public:
    virtual ~MainQueue() = default;

    virtual void async(Task task) = 0;

    /// Runs the task not before `delay` from now.
    virtual void asyncAfter(std::chrono::nanoseconds delay, Task task) = 0;

    /// Runs the task not before `delay` from when the queue's turn would have come for a task without a
    /// delay: the time for which the queue is busy counts extra. A queue that is not busy need not wake up
    /// for it.
    virtual void asyncAfterTurn(std::chrono::nanoseconds delay, Task task) {
        async([this, delay, task = std::move(task)]() mutable { asyncAfter(delay, std::move(task)); });
    }
};

}  // namespace corvane
