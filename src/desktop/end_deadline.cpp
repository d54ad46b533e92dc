#include "desktop/end_deadline.h"

#include <cstdlib>

namespace corvane {

EndDeadline::~EndDeadline() {
    if (!watcher_.joinable())
        return;
    {
        const std::lock_guard lock(mutex_);
        hasEnded_ = true;
    }
    changed_.notify_all();
    watcher_.join();
}

void EndDeadline::start(std::chrono::milliseconds limit) {
    if (!watcher_.joinable())
        watcher_ = std::thread([this, limit] { watch(limit); });
}

void EndDeadline::watch(std::chrono::milliseconds limit) {
    std::unique_lock lock(mutex_);
    if (changed_.wait_for(lock, limit, [this] { return hasEnded_; }))
        return;
    log_.log("the program did not come to its end in time");
    std::_Exit(EXIT_SUCCESS);
}

}  // namespace corvane
