#include "demo_service/request_log.h"

#include <algorithm>
#include <utility>

namespace corvane::demo {

namespace {

bool isSameList(const ReportRequest& first, const ReportRequest& second) {
    return first.vendorId == second.vendorId && first.dateType == second.dateType;
}

}  // namespace

ReceivedRequest RequestLog::add(ReceivedRequest request) {
    const std::scoped_lock lock(mutex_);
    if (request.reportRequest) {
        const auto count = std::ranges::count_if(requests_, [&](const ReceivedRequest& earlier) {
            return earlier.reportRequest && isSameList(*earlier.reportRequest, *request.reportRequest);
        });
        request.reportRequest->index = static_cast<std::size_t>(count);
    }
    requests_.push_back(request);
    changed_.notify_all();
    return request;
}

std::vector<ReceivedRequest> RequestLog::requests() const {
    const std::scoped_lock lock(mutex_);
    return requests_;
}

std::size_t RequestLog::count() const {
    const std::scoped_lock lock(mutex_);
    return requests_.size();
}

bool RequestLog::waitForCount(std::size_t count, std::chrono::milliseconds timeout) const {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, timeout, [&] { return requests_.size() >= count; });
}

void RequestLog::clear() {
    const std::scoped_lock lock(mutex_);
    requests_.clear();
}

}  // namespace corvane::demo
