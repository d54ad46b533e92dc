#include "demo_service/demo_service.h"

#include <fmt/format.h>

#include <fstream>
#include <utility>

#include "demo_service/made_up_report_source.h"
#include "demo_service/plain_front.h"
#include "demo_service/report_front.h"
#include "demo_service/tls_context.h"

namespace corvane::demo {

namespace {

constexpr std::string_view kFeedPath = "/Plovance/update.json";

class RunningDemoService final : public DemoService {
  public:
    RunningDemoService(const DemoServiceOptions& options, TlsSetup tls)
        : caCertificate_(std::move(tls.caCertificate)),
          updateFeed_(options.updateFeed),
          reportFront_(std::move(tls.context), options),
          updateFront_([this](const ReceivedRequest& request) { return answerOfFeed(request); },
                       options.keepsRequests),
          redirectTargetFront_(
              [](const ReceivedRequest&) {
                  return PlainAnswer{statusPage(200), {}};
              },
              options.keepsRequests) {}

    /// False when a port is taken.
    bool listen(std::uint16_t port, std::uint16_t updatePort) {
        reportListener_ = Listener::open(port, reportFront_.serve());
        updateListener_ = Listener::open(updatePort, updateFront_.serve());
        redirectTargetListener_ = Listener::open(0, redirectTargetFront_.serve());
        return reportListener_ && updateListener_ && redirectTargetListener_;
    }

    std::uint16_t port() const override { return reportListener_->port(); }
    std::uint16_t updatePort() const override { return updateListener_->port(); }
    std::uint16_t redirectTargetPort() const override { return redirectTargetListener_->port(); }
    std::string caCertificate() const override { return caCertificate_; }

    void setBehaviour(BehaviourRule rule) override { reportFront_.setBehaviour(std::move(rule)); }

    void setUpdateFeed(UpdateFeed feed) override {
        const std::scoped_lock lock(mutex_);
        updateFeed_ = std::move(feed);
    }

    RequestLog& requests() override { return reportFront_.log(); }
    RequestLog& updateRequests() override { return updateFront_.log(); }
    RequestLog& redirectTargetRequests() override { return redirectTargetFront_.log(); }

    std::size_t acceptedConnections() const override { return reportListener_->acceptedConnections(); }
    std::size_t openConnections() const override { return reportListener_->openConnections(); }
    std::size_t peakOpenConnections() const override { return reportListener_->peakOpenConnections(); }
    std::size_t redirectTargetConnections() const override {
        return redirectTargetListener_->acceptedConnections();
    }
    std::uint64_t receivedBytes() const override { return reportFront_.receivedBytes(); }

  private:
    PlainAnswer answerOfFeed(const ReceivedRequest& request) {
        if (!request.requestLine.starts_with(fmt::format("GET {} ", kFeedPath))) {
            return {statusPage(404), {}};
        }
        const std::scoped_lock lock(mutex_);
        return {Answer{updateFeed_.statusCode,
                       {"Content-Type: " + updateFeed_.contentType},
                       toBytes(updateFeed_.body)},
                updateFeed_.delivery};
    }

    std::string caCertificate_;
    std::mutex mutex_;  // guards updateFeed_
    UpdateFeed updateFeed_;
    ReportFront reportFront_;
    PlainFront updateFront_;
    PlainFront redirectTargetFront_;
    // After the fronts that they serve: their threads end first.
    std::unique_ptr<Listener> reportListener_;
    std::unique_ptr<Listener> updateListener_;
    std::unique_ptr<Listener> redirectTargetListener_;
};

std::string localHost(std::uint16_t port) {
    return fmt::format("localhost:{}", port);
}

}  // namespace

std::unique_ptr<DemoService> DemoService::start(DemoServiceOptions options, std::string& problem) {
    auto tls = makeTlsSetup(options.tls, options.hostName);
    if (!tls) {
        problem = "cannot make a certificate";
        return nullptr;
    }
    if (!options.source) {
        options.source = std::make_shared<MadeUpReportSource>();
    }
    auto service = std::make_unique<RunningDemoService>(options, std::move(*tls));
    if (!service->listen(options.port, options.updatePort)) {
        problem =
            fmt::format("cannot listen on port {} or {} of 127.0.0.1", options.port, options.updatePort);
        return nullptr;
    }
    return service;
}

std::string DemoService::reportServiceHost() const {
    return localHost(port());
}

std::string DemoService::updateHost() const {
    return localHost(updatePort());
}

std::string DemoService::redirectTargetHost() const {
    return localHost(redirectTargetPort());
}

bool DemoService::writeCaFile(const std::filesystem::path& path) const {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << caCertificate();
    file.close();
    return file.good();
}

}  // namespace corvane::demo
