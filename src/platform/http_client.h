#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/bytes.h"

namespace corvane {

struct HttpHeader {
    std::string name;  ///< as sent or received, letter case included
    std::string value;

    bool operator==(const HttpHeader&) const = default;
};

struct HttpRequest {
    std::string method;
    std::string url;
    std::vector<HttpHeader> headers;
    std::string body;  ///< sent with every method but GET
    bool followsRedirects = false;
    std::size_t maximumBodySize = std::size_t{64} * 1024 * 1024;  ///< a longer answer is a failed request
};

/// What the service answered besides the body. Only the final response counts, not a redirect or "100
/// Continue" that went before it.
struct HttpResponse {
    int statusCode = 0;
    std::string url;                  ///< the URL that answered
    std::vector<HttpHeader> headers;  ///< in the order received; values without leading and trailing blanks

    /// The value of the header of exactly this name (letter case counts), values of repeated headers joined
    /// with ", "; absent when there is none.
    std::optional<std::string> headerField(std::string_view exactName) const;
};

struct HttpAnswer {
    std::optional<HttpResponse> response;
    std::optional<Bytes> body;     ///< absent after a transport failure; an empty body is present and empty
    std::string errorDescription;  ///< why the body is absent, for a person; empty otherwise
    bool isCancelled = false;      ///< the client was asked to stop: nobody waits for the answer any more
};

/// Sends requests. May be used from several threads at once. An HTTP status is no failure: whatever the
/// server answered completely is handed on as sent, undecoded.
class HttpClient {
  public:
    virtual ~HttpClient() = default;

    /// Blocks the calling thread until the answer is complete or the request failed: no connection, a refused
    /// certificate, 60 s without a byte, a body cut off or too long, or a client that was asked to stop.
    virtual HttpAnswer sendSynchronousRequest(const HttpRequest& request) = 0;
};

}  // namespace corvane
