#pragma once

#include <curl/curl.h>

#include <atomic>
#include <cstddef>
#include <memory>
#include <string>

#include "platform/http_client.h"
#include "platform/system/answer_body.h"
#include "platform/system/curl_http_client.h"
#include "platform/system/curl_share.h"

namespace corvane {

/// Sends requests one after another, each on its caller's thread, and keeps the connection in between.
class CurlConnection {
  public:
    /// What it is given must outlive it.
    CurlConnection(const CurlHttpClientOptions& options, const CurlShare& share,
                   VolumeBudget& unfinishedBodies, const std::atomic<bool>& isStopped);

    CurlConnection(const CurlConnection&) = delete;
    CurlConnection& operator=(const CurlConnection&) = delete;

    HttpAnswer send(const HttpRequest& request);

    /// Lets a running `send` look at once whether it is to stop. Any thread.
    void wakeUp();

  private:
    enum class Outcome { Ended, TimedOut, Stopped, BodyTooLong, HeadersTooLong };

    struct EasyDeleter {
        void operator()(CURL* easy) const { curl_easy_cleanup(easy); }
    };
    struct MultiDeleter {
        void operator()(CURLM* multi) const { curl_multi_cleanup(multi); }
    };
    struct ListDeleter {
        void operator()(curl_slist* list) const { curl_slist_free_all(list); }
    };

    static std::size_t receiveHeader(const char* data, std::size_t size, std::size_t count, void* self);
    static std::size_t receiveBody(const char* data, std::size_t size, std::size_t count, void* self);

    CURLcode prepare(const HttpRequest& request);
    CURLcode prepareHeaders(const HttpRequest& request);
    CURLcode transfer();
    CURLcode waitForEnd();
    HttpResponse readResponse() const;
    std::string describeFailure(CURLcode code) const;

    const CurlHttpClientOptions& options_;
    const std::atomic<bool>& isStopped_;
    const std::string noProxy_;
    std::unique_ptr<CURL, EasyDeleter> easy_;
    std::unique_ptr<CURLM, MultiDeleter> multi_;

    // Of the running request.
    std::unique_ptr<curl_slist, ListDeleter> headerLines_;
    std::size_t headerVolume_ = 0;
    AnswerBody body_;
    Outcome outcome_ = Outcome::Ended;
};

}  // namespace corvane
