#pragma once

#include <chrono>
#include <cstddef>
#include <memory>
#include <string>

#include "platform/http_client.h"

namespace corvane {

struct CurlHttpClientOptions {
    /// PEM file of the only certificates trusted; empty: the system's store.
    std::string caFile;
    std::string userAgent = "Corvane";
    /// From the name look-up to the end of the TLS handshake.
    std::chrono::milliseconds connectLimit{30'000};
    /// The longest silence of the network within a request.
    std::chrono::milliseconds idleLimit{60'000};
    /// Of one request, in bytes: all header lines of all its responses together.
    std::size_t maximumHeaderVolume = std::size_t{256} * 1024;
    /// Of all requests that are on their way at once: the bodies received so far, in bytes. One that would
    /// pass it fails as one whose own body is too long. More than the longest body, so that a request alone
    /// never meets it.
    std::size_t maximumUnfinishedVolume = std::size_t{80} * 1024 * 1024;
};

/// HTTP over libcurl: HTTP/1.1 only, TLS 1.2 or newer with certificate and host name checked, no cookies,
/// stored credentials or decoding. Redirects are followed only where the request asks for it, to http and
/// https, at most ten. A proxy named by the environment is used, but never given credentials, and never for
/// this machine itself.
///
/// Each concurrent request has a connection of its own, which is kept for a later request; TLS sessions are
/// shared. A request runs on its caller's thread alone; between requests nothing runs. A request on a kept
/// connection that the server closes without an answer is sent once more on a new one. A body that announces
/// no length ends with the connection, also where TLS is not closed first: too many servers do that.
class CurlHttpClient final : public HttpClient {
  public:
    explicit CurlHttpClient(CurlHttpClientOptions options);

    /// Stops, and waits until no request is running any more.
    ~CurlHttpClient() override;

    CurlHttpClient(const CurlHttpClient&) = delete;
    CurlHttpClient& operator=(const CurlHttpClient&) = delete;

    HttpAnswer sendSynchronousRequest(const HttpRequest& request) override;

    /// Ends every running request at once, and every later one; they fail. Any thread.
    void stop();

  private:
    class Pool;

    std::unique_ptr<Pool> pool_;
};

}  // namespace corvane
