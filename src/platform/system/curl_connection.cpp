#include "platform/system/curl_connection.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <optional>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "platform/fatal_error.h"

namespace corvane {
namespace {

using SteadyClock = std::chrono::steady_clock;

/// Sets options until one is refused; that one's error is the result.
class OptionSetter {
  public:
    explicit OptionSetter(CURL* easy) : easy_(easy) {}

    template <typename Value>
    void set(CURLoption option, Value value) {
        if (result_ == CURLE_OK)
            result_ = curl_easy_setopt(easy_, option, value);
    }

    CURLcode result() const { return result_; }

  private:
    CURL* easy_;
    CURLcode result_ = CURLE_OK;
};

/// The environment's exceptions from its proxy, and this machine: a proxy would reach another "localhost".
std::string hostsWithoutProxy() {
    std::string hosts = "localhost,127.0.0.0/8,::1";
    for (const char* variable : {"no_proxy", "NO_PROXY"}) {
        const char* const value = std::getenv(variable);
        if (value == nullptr || *value == '\0')
            continue;
        return std::string_view(value) == "*" ? value : hosts + "," + value;
    }
    return hosts;
}

/// A line break in a header would begin another one.
bool isOneLine(std::string_view text) {
    return text.find_first_of(std::string_view("\r\n\0", 3)) == std::string_view::npos;
}

/// The form in which the library takes a header: it would take "Name:" as the wish to leave that header out.
std::string headerLine(const HttpHeader& header) {
    return header.value.empty() ? header.name + ";" : header.name + ": " + header.value;
}

/// The library itself leaves the line's end behind in a value that is empty.
std::string_view trimmed(std::string_view value) {
    constexpr std::string_view blanks = " \t\r\n";
    const std::size_t first = value.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return {};
    return value.substr(first, value.find_last_not_of(blanks) - first + 1);
}

/// The target of a request whose URL ends in an empty query, which the library forgets when it sends a
/// request once more on a new connection. Absent where the library knows better: the target would outlive a
/// redirect, and a proxy of plain HTTP wants another one.
std::optional<std::string> targetWithEmptyQuery(const HttpRequest& request) {
    constexpr std::string_view scheme = "https://";
    if (request.followsRedirects || !request.url.starts_with(scheme) || !request.url.ends_with('?'))
        return std::nullopt;
    const std::size_t path = request.url.find_first_of("/?", scheme.size());
    return request.url[path] == '/' ? request.url.substr(path) : "/" + request.url.substr(path);
}

bool isContentType(const HttpHeader& header) {
    return curl_strequal(header.name.c_str(), "Content-Type") != 0;
}

std::string describe(CURLcode code, long systemError) {
    switch (code) {
        case CURLE_OPERATION_TIMEDOUT:
            return "The request timed out.";
        case CURLE_COULDNT_RESOLVE_HOST:
            return "A server with the specified hostname could not be found.";
        case CURLE_COULDNT_CONNECT:
            if (systemError == ENETUNREACH || systemError == ENETDOWN)
                return "The Internet connection appears to be offline.";
            return "Could not connect to the server.";
        case CURLE_PARTIAL_FILE:
        case CURLE_GOT_NOTHING:
        case CURLE_RECV_ERROR:
        case CURLE_SEND_ERROR:
            return "The network connection was lost.";
        case CURLE_PEER_FAILED_VERIFICATION:
        case CURLE_SSL_CONNECT_ERROR:
        case CURLE_SSL_CACERT_BADFILE:
        case CURLE_SSL_CERTPROBLEM:
        case CURLE_SSL_CIPHER:
        case CURLE_SSL_ISSUER_ERROR:
        case CURLE_SSL_CRL_BADFILE:
        case CURLE_SSL_INVALIDCERTSTATUS:
        case CURLE_SSL_PINNEDPUBKEYNOTMATCH:
        case CURLE_SSL_CLIENTCERT:
        case CURLE_SSL_ENGINE_INITFAILED:
        case CURLE_SSL_SHUTDOWN_FAILED:
        case CURLE_USE_SSL_FAILED:
            return "An SSL error has occurred and a secure connection to the server cannot be made.";
        case CURLE_TOO_MANY_REDIRECTS:
            return "too many HTTP redirects";
        case CURLE_URL_MALFORMAT:
        case CURLE_UNSUPPORTED_PROTOCOL:
            return "bad URL";
        default:
            return curl_easy_strerror(code);
    }
}

}  // namespace

CurlConnection::CurlConnection(const CurlHttpClientOptions& options, const CurlShare& share,
                               VolumeBudget& unfinishedBodies, const std::atomic<bool>& isStopped)
    : options_(options),
      isStopped_(isStopped),
      noProxy_(hostsWithoutProxy()),
      easy_(curl_easy_init()),
      multi_(curl_multi_init()),
      body_(unfinishedBodies) {
    if (!easy_ || !multi_ || curl_easy_setopt(easy_.get(), CURLOPT_SHARE, share.get()) != CURLE_OK)
        fatalError("the HTTP library cannot make a connection");
}

void CurlConnection::wakeUp() {
    curl_multi_wakeup(multi_.get());
}

HttpAnswer CurlConnection::send(const HttpRequest& request) {
    headerVolume_ = 0;
    body_.start(request.maximumBodySize);
    outcome_ = Outcome::Ended;
    CURLcode code = prepare(request);
    if (code == CURLE_OK)
        code = transfer();

    HttpAnswer answer;
    if (code == CURLE_OK) {
        answer.response = readResponse();
        answer.body = body_.take();
    } else {
        answer.errorDescription = describeFailure(code);
        answer.isCancelled = outcome_ == Outcome::Stopped;
    }
    body_.start(0);
    return answer;
}

CURLcode CurlConnection::prepare(const HttpRequest& request) {
    curl_easy_reset(easy_.get());  // keeps connections, TLS sessions and the share
    OptionSetter options(easy_.get());
    options.set(CURLOPT_URL, request.url.c_str());
    if (const std::optional<std::string> target = targetWithEmptyQuery(request))
        options.set(CURLOPT_REQUEST_TARGET, target->c_str());
    options.set(CURLOPT_USERAGENT, options_.userAgent.c_str());
    options.set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
    options.set(CURLOPT_PROTOCOLS_STR, "http,https");
    options.set(CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
    options.set(CURLOPT_FOLLOWLOCATION, request.followsRedirects ? 1L : 0L);
    options.set(CURLOPT_MAXREDIRS, 10L);
    options.set(CURLOPT_HTTP_CONTENT_DECODING, 0L);

    options.set(CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
    options.set(CURLOPT_SSL_VERIFYPEER, 1L);
    options.set(CURLOPT_SSL_VERIFYHOST, 2L);
    if (!options_.caFile.empty()) {
        options.set(CURLOPT_CAINFO, options_.caFile.c_str());
        options.set(CURLOPT_CAPATH, static_cast<const char*>(nullptr));
    }

    options.set(CURLOPT_NOPROXY, noProxy_.c_str());
    options.set(CURLOPT_PROXYAUTH, CURLAUTH_NONE);
    options.set(CURLOPT_SOCKS5_AUTH, CURLAUTH_NONE);

    options.set(CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(options_.connectLimit.count()));
    options.set(CURLOPT_NOSIGNAL, 1L);
    options.set(CURLOPT_QUICK_EXIT, 1L);  // a request that ends does not wait for a name look-up that hangs

    options.set(CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(request.maximumBodySize));
    options.set(CURLOPT_HEADERFUNCTION, &CurlConnection::receiveHeader);
    options.set(CURLOPT_HEADERDATA, static_cast<void*>(this));
    options.set(CURLOPT_WRITEFUNCTION, &CurlConnection::receiveBody);
    options.set(CURLOPT_WRITEDATA, static_cast<void*>(this));

    if (request.method == "GET") {
        options.set(CURLOPT_HTTPGET, 1L);
    } else {
        options.set(CURLOPT_POST, 1L);
        options.set(CURLOPT_POSTFIELDS, request.body.c_str());
        options.set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(request.body.size()));
    }
    if (request.method != "GET" && request.method != "POST")
        options.set(CURLOPT_CUSTOMREQUEST, request.method.c_str());
    return options.result() == CURLE_OK ? prepareHeaders(request) : options.result();
}

CURLcode CurlConnection::prepareHeaders(const HttpRequest& request) {
    // The library adds both to a request with a body unless told otherwise.
    std::vector<std::string> lines{"Expect:"};
    if (std::none_of(request.headers.begin(), request.headers.end(), isContentType))
        lines.emplace_back("Content-Type:");
    for (const HttpHeader& header : request.headers) {
        if (!isOneLine(header.name) || !isOneLine(header.value))
            return CURLE_BAD_FUNCTION_ARGUMENT;
        lines.push_back(headerLine(header));
    }
    headerLines_.reset();
    for (const std::string& line : lines) {
        curl_slist* const extended = curl_slist_append(headerLines_.get(), line.c_str());
        if (extended == nullptr)
            return CURLE_OUT_OF_MEMORY;
        std::ignore = headerLines_.release();
        headerLines_.reset(extended);
    }
    return curl_easy_setopt(easy_.get(), CURLOPT_HTTPHEADER, headerLines_.get());
}

CURLcode CurlConnection::transfer() {
    if (curl_multi_add_handle(multi_.get(), easy_.get()) != CURLM_OK)
        return CURLE_FAILED_INIT;
    const CURLcode code = waitForEnd();
    curl_multi_remove_handle(multi_.get(),
                             easy_.get());  // closes the connection of a request that did not end
    return code;
}

CURLcode CurlConnection::waitForEnd() {
    SteadyClock::time_point lastActivity = SteadyClock::now();
    while (true) {
        int running = 0;
        if (curl_multi_perform(multi_.get(), &running) != CURLM_OK)
            return CURLE_FAILED_INIT;
        if (running == 0)
            break;
        if (isStopped_) {
            outcome_ = Outcome::Stopped;
            return CURLE_ABORTED_BY_CALLBACK;
        }
        const auto idleTime =
            std::chrono::duration_cast<std::chrono::milliseconds>(SteadyClock::now() - lastActivity);
        if (idleTime >= options_.idleLimit) {
            outcome_ = Outcome::TimedOut;
            return CURLE_OPERATION_TIMEDOUT;
        }
        const std::chrono::milliseconds wait = options_.idleLimit - idleTime;
        int activeSockets = 0;
        if (curl_multi_poll(multi_.get(), nullptr, 0, static_cast<int>(wait.count()), &activeSockets) !=
            CURLM_OK)
            return CURLE_FAILED_INIT;
        if (activeSockets > 0)
            lastActivity = SteadyClock::now();
    }
    int messagesLeft = 0;
    const CURLMsg* const message = curl_multi_info_read(multi_.get(), &messagesLeft);
    if (message == nullptr || message->msg != CURLMSG_DONE)
        return CURLE_FAILED_INIT;
    return message->data.result;
}

std::size_t CurlConnection::receiveHeader(const char* /*data*/, std::size_t size, std::size_t count,
                                          void* self) {
    auto& connection = *static_cast<CurlConnection*>(self);
    const std::size_t length = size * count;
    connection.headerVolume_ += length;
    if (connection.headerVolume_ <= connection.options_.maximumHeaderVolume)
        return length;
    connection.outcome_ = Outcome::HeadersTooLong;
    return 0;
}

std::size_t CurlConnection::receiveBody(const char* data, std::size_t size, std::size_t count, void* self) {
    auto& connection = *static_cast<CurlConnection*>(self);
    const std::size_t length = size * count;
    if (connection.body_.append(asBytes({data, length})))
        return length;
    connection.outcome_ = Outcome::BodyTooLong;
    return 0;
}

HttpResponse CurlConnection::readResponse() const {
    HttpResponse response;
    long status = 0;
    curl_easy_getinfo(easy_.get(), CURLINFO_RESPONSE_CODE, &status);
    response.statusCode = static_cast<int>(status);
    const char* url = nullptr;
    curl_easy_getinfo(easy_.get(), CURLINFO_EFFECTIVE_URL, &url);
    if (url != nullptr)
        response.url = url;
    constexpr int lastRequest = -1;
    curl_header* header = nullptr;
    while ((header = curl_easy_nextheader(easy_.get(), CURLH_HEADER, lastRequest, header)) != nullptr)
        response.headers.push_back({header->name, std::string(trimmed(header->value))});
    return response;
}

std::string CurlConnection::describeFailure(CURLcode code) const {
    if (outcome_ == Outcome::Stopped)
        return "cancelled";
    if (outcome_ == Outcome::BodyTooLong || code == CURLE_FILESIZE_EXCEEDED)
        return "The answer is too long.";
    if (outcome_ == Outcome::HeadersTooLong)
        return "The header of the answer is too long.";
    long systemError = 0;
    curl_easy_getinfo(easy_.get(), CURLINFO_OS_ERRNO, &systemError);
    return describe(code, systemError);
}

}  // namespace corvane
