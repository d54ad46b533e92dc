#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "demo_service/report_request.h"
#include "platform/bytes.h"

namespace corvane::demo {

/// A request as it came in, byte for byte.
struct ReceivedRequest {
    std::string requestLine;               ///< without line end
    std::vector<std::string> headerLines;  ///< without line ends, in the order received
    Bytes body;
    std::size_t connection = 0;  ///< number of the connection, from 1
    std::optional<ReportRequest>
        reportRequest;  ///< what the body asks for; absent when it asks for no report
};

/// The requests that a listener received, in the order in which they were complete. Thread-safe.
class RequestLog {
  public:
    /// A log that keeps nothing still numbers and counts.
    explicit RequestLog(bool keepsRequests = true) : keepsRequests_(keepsRequests) {}

    /// Fills in the index of a request for a report and gives it back.
    ReceivedRequest add(ReceivedRequest request);

    std::vector<ReceivedRequest> requests() const;
    std::size_t count() const;

    /// Waits until at least that many requests have come in; false when the time has passed before.
    bool waitForCount(std::size_t count, std::chrono::milliseconds timeout) const;

    /// Forgets all requests and numbers from 0 again.
    void clear();

  private:
    mutable std::mutex mutex_;
    mutable std::condition_variable changed_;
    const bool keepsRequests_;
    std::vector<ReceivedRequest> requests_;
    std::size_t count_ = 0;
    std::map<std::pair<std::string, ReportDateType>, std::size_t> countsOfLists_;  // by vendor and date type
};

}  // namespace corvane::demo
