#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

#include "demo_service/answer.h"
#include "demo_service/behaviour.h"
#include "demo_service/demo_service.h"
#include "demo_service/listener.h"
#include "demo_service/openssl_pointers.h"
#include "demo_service/report_source.h"
#include "demo_service/request_log.h"

namespace corvane::demo {

/// The protocol of the report service over TLS.
class ReportFront {
  public:
    /// Of the options it takes all that concerns reports; there must be a source.
    ReportFront(TlsContextPointer tls, const DemoServiceOptions& options);

    /// Serves a listener's connections; valid as long as this front.
    Listener::Serve serve();

    void setBehaviour(BehaviourRule rule);

    RequestLog& log() { return log_; }
    std::uint64_t receivedBytes() const { return receivedBytes_; }

  private:
    struct Reply {
        Answer answer;
        Delivery delivery;
    };

    void serveConnection(Socket socket, std::size_t connection);
    Reply replyTo(const ReceivedRequest& request);
    Behaviour behaviourFor(const ReportRequest& request);

    TlsContextPointer tls_;
    const std::vector<DemoAccount> accounts_;
    const std::shared_ptr<ReportSource> source_;
    const std::chrono::milliseconds latency_;
    std::mutex mutex_;  // guards rule_
    BehaviourRule rule_;
    RequestLog log_;
    std::atomic<std::uint64_t> receivedBytes_ = 0;
};

}  // namespace corvane::demo
