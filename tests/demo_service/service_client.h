#pragma once

#include <curl/curl.h>

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "demo_service/demo_service.h"
#include "demo_service/file_descriptor.h"
#include "demo_service/openssl_pointers.h"
#include "platform/bytes.h"

namespace corvane::demo {

/// A service in order, or a failed test.
std::unique_ptr<DemoService> startService(DemoServiceOptions options = {});

/// The form of a request for a report, encoded as clients of the service do.
std::string formFor(std::string_view vendorId, std::string_view dateType, std::string_view date);

struct Fetched {
    CURLcode result = CURLE_OK;
    long status = 0;
    std::vector<std::string> headerLines;  ///< without line ends
    std::string body;

    bool hasHeaderLine(std::string_view line) const;
    bool hasHeader(std::string_view nameAndColon) const;
};

/// Keeps its connection between requests and follows no redirect.
class CurlClient {
  public:
    explicit CurlClient(std::string caCertificate = {});
    ~CurlClient();
    CurlClient(const CurlClient&) = delete;
    CurlClient& operator=(const CurlClient&) = delete;

    void setTimeout(std::chrono::milliseconds timeout);
    Fetched post(const std::string& url, const std::string& form);
    Fetched get(const std::string& url);

  private:
    Fetched perform(const std::string& url);

    CURL* handle_;
    std::string caCertificate_;
};

/// One request for a daily report over a connection of its own.
Fetched fetchReport(DemoService& service, std::string_view date = "20150104",
                    std::chrono::milliseconds timeout = std::chrono::seconds(20));

std::string reportUrl(const DemoService& service);
std::string feedUrl(const DemoService& service);

/// A TCP connection that says nothing.
FileDescriptor connectTo(std::uint16_t port);

/// The unpacked text; absent when it is not one whole gzip member.
std::optional<std::string> gunzipped(std::string_view packed);

/// A TLS connection to look at single bytes. Blocks while reading, for 10 s at most. Checks no certificate.
class RawTlsClient {
  public:
    enum class End { ClosedInOrder, Closed, Reset, TimedOut };

    explicit RawTlsClient(std::uint16_t port);
    RawTlsClient(const RawTlsClient&) = delete;
    RawTlsClient& operator=(const RawTlsClient&) = delete;

    bool isConnected() const { return isConnected_; }
    std::string protocol() const;

    void setReadTimeout(std::chrono::milliseconds timeout);
    bool send(std::string_view text);

    /// Reads until that many bytes are there, or the connection ends.
    std::string read(std::size_t count);
    std::string readToTheEnd();
    /// Why the last read ended before its count.
    End end() const { return end_; }

  private:
    FileDescriptor descriptor_;
    TlsContextPointer context_;
    TlsPointer tls_;
    bool isConnected_ = false;
    End end_ = End::Closed;
};

/// A complete request for a report as text.
std::string rawReportRequest(std::string_view date = "20150104");

}  // namespace corvane::demo
