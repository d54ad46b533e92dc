#include "platform/memory/manual_main_queue.h"

#include <algorithm>

namespace corvane {

void ManualMainQueue::async(Task task) {
    asyncAfter(std::chrono::nanoseconds{0}, std::move(task));
}

void ManualMainQueue::asyncAfter(std::chrono::nanoseconds delay, Task task) {
    const std::lock_guard lock(mutex_);
    tasks_.emplace(DueTime{now_ + delay, nextNumber_++}, std::move(task));
}

std::size_t ManualMainQueue::runDueTasks() {
    return advance(std::chrono::nanoseconds{0});
}

std::size_t ManualMainQueue::advance(std::chrono::nanoseconds time) {
    if (isRunning_)
        return 0;
    isRunning_ = true;
    const std::chrono::nanoseconds limit = now_ + time;
    std::size_t count = 0;
    for (Task task; takeNextDue(limit, task); ++count)
        task();
    const std::lock_guard lock(mutex_);
    now_ = limit;
    isRunning_ = false;
    return count;
}

bool ManualMainQueue::takeNextDue(std::chrono::nanoseconds limit, Task& task) {
    const std::lock_guard lock(mutex_);
    if (tasks_.empty() || tasks_.begin()->first.first > limit)
        return false;
    auto next = tasks_.extract(tasks_.begin());
    now_ = std::max(now_, next.key().first);
    task = std::move(next.mapped());
    return true;
}

std::size_t ManualMainQueue::pendingCount() const {
    const std::lock_guard lock(mutex_);
    return tasks_.size();
}

}  // namespace corvane
