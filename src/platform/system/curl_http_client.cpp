#include "platform/system/curl_http_client.h"

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include "platform/system/answer_body.h"
#include "platform/system/curl_connection.h"
#include "platform/system/curl_share.h"

namespace corvane {

/// The connections: those of running requests, and the kept ones. The one kept last is taken first, so that
/// few stay in use.
class CurlHttpClient::Pool {
  public:
    explicit Pool(CurlHttpClientOptions options)
        : options_(std::move(options)), unfinishedBodies_(options_.maximumUnfinishedVolume) {}

    /// Null after `stop`.
    std::unique_ptr<CurlConnection> take() {
        const std::lock_guard lock(mutex_);
        if (isStopped_)
            return nullptr;
        std::unique_ptr<CurlConnection> connection;
        if (kept_.empty()) {
            connection = std::make_unique<CurlConnection>(options_, share_, unfinishedBodies_, isStopped_);
        } else {
            connection = std::move(kept_.back());
            kept_.pop_back();
        }
        running_.insert(connection.get());
        return connection;
    }

    void giveBack(std::unique_ptr<CurlConnection> connection) {
        const std::lock_guard lock(mutex_);
        running_.erase(connection.get());
        kept_.push_back(std::move(connection));
        if (running_.empty())
            noneRunning_.notify_all();
    }

    void stop() {
        const std::lock_guard lock(mutex_);
        isStopped_ = true;
        for (CurlConnection* connection : running_)
            connection->wakeUp();
    }

    void waitUntilNoneRuns() {
        std::unique_lock lock(mutex_);
        noneRunning_.wait(lock, [this] { return running_.empty(); });
    }

  private:
    const CurlHttpClientOptions options_;
    CurlShare share_;
    VolumeBudget unfinishedBodies_;
    std::atomic<bool> isStopped_ = false;
    std::mutex mutex_;
    std::condition_variable noneRunning_;
    std::set<CurlConnection*> running_;
    std::vector<std::unique_ptr<CurlConnection>> kept_;
};

CurlHttpClient::CurlHttpClient(CurlHttpClientOptions options)
    : pool_(std::make_unique<Pool>(std::move(options))) {}

CurlHttpClient::~CurlHttpClient() {
    stop();
    pool_->waitUntilNoneRuns();
    pool_.reset();
}

HttpAnswer CurlHttpClient::sendSynchronousRequest(const HttpRequest& request) {
    std::unique_ptr<CurlConnection> connection = pool_->take();
    if (!connection)
        return {.response = {}, .body = {}, .errorDescription = "cancelled", .isCancelled = true};
    HttpAnswer answer = connection->send(request);
    pool_->giveBack(std::move(connection));
    return answer;
}

void CurlHttpClient::stop() {
    pool_->stop();
}

}  // namespace corvane
