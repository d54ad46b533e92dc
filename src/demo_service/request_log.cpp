#include "demo_service/request_log.h"

namespace corvane::demo {

ReceivedRequest RequestLog::add(ReceivedRequest request) {
    const std::scoped_lock lock(mutex_);
    if (auto& asked = request.reportRequest) {
        asked->index = countsOfLists_[{asked->vendorId, asked->dateType}]++;
    }
    if (keepsRequests_) {
        requests_.push_back(request);
    }
    ++count_;
    changed_.notify_all();
    return request;
}

std::vector<ReceivedRequest> RequestLog::requests() const {
    const std::scoped_lock lock(mutex_);
    return requests_;
}

std::size_t RequestLog::count() const {
    const std::scoped_lock lock(mutex_);
    return count_;
}

bool RequestLog::waitForCount(std::size_t count, std::chrono::milliseconds timeout) const {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, timeout, [&] { return count_ >= count; });
}

void RequestLog::clear() {
    const std::scoped_lock lock(mutex_);
    requests_.clear();
    countsOfLists_.clear();
    count_ = 0;
}

}  // namespace corvane::demo
