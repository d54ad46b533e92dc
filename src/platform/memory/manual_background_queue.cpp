#include "platform/memory/manual_background_queue.h"

#include <utility>

namespace corvane {

void ManualBackgroundQueue::async(Task task) {
    tasks_.push_back(std::move(task));
}

std::size_t ManualBackgroundQueue::runAll() {
    std::size_t count = 0;
    while (!tasks_.empty()) {
        const Task task = std::move(tasks_.front());
        tasks_.pop_front();
        task();
        ++count;
    }
    return count;
}

}  // namespace corvane
