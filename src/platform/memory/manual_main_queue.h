#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <mutex>
#include <utility>

#include "platform/main_queue.h"

namespace corvane {

/// A main queue whose time stands still until it is moved. Tasks may be added on any thread; the thread that
/// moves the time is the main thread.
class ManualMainQueue final : public MainQueue {
  public:
    void async(Task task) override;
    void asyncAfter(std::chrono::nanoseconds delay, Task task) override;

    /// Runs every task that is due now, those that they add without a delay included. Returns how many ran; 0
    /// when called from one of the queue's own tasks, as from a modal alert.
    std::size_t runDueTasks();

    /// Moves the time on, step by step from task to task, and runs everything that becomes due.
    std::size_t advance(std::chrono::nanoseconds time);

    /// Tasks waiting, due or not.
    std::size_t pendingCount() const;

  private:
    bool takeNextDue(std::chrono::nanoseconds limit, Task& task);

    using DueTime = std::pair<std::chrono::nanoseconds, std::uint64_t>;

    mutable std::mutex mutex_;
    std::map<DueTime, Task> tasks_;
    std::chrono::nanoseconds now_{0};
    std::uint64_t nextNumber_ = 0;
    bool isRunning_ = false;
};

}  // namespace corvane
