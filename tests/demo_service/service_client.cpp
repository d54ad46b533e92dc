#include "demo_service/service_client.h"

#include <arpa/inet.h>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <openssl/err.h>
#include <sys/socket.h>
#include <unistd.h>
#include <zlib.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

namespace corvane::demo {

namespace {

std::size_t appendBody(char* data, std::size_t size, std::size_t count, void* target) {
    static_cast<std::string*>(target)->append(data, size * count);
    return size * count;
}

std::size_t appendHeaderLine(char* data, std::size_t size, std::size_t count, void* target) {
    std::string line(data, size * count);
    while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) {
        line.pop_back();
    }
    static_cast<std::vector<std::string>*>(target)->push_back(std::move(line));
    return size * count;
}

void setSocketTimeout(int descriptor, std::chrono::milliseconds timeout) {
    const timeval time{.tv_sec = timeout.count() / 1000, .tv_usec = timeout.count() % 1000 * 1000};
    ::setsockopt(descriptor, SOL_SOCKET, SO_RCVTIMEO, &time, sizeof time);
}

}  // namespace

std::unique_ptr<DemoService> startService(DemoServiceOptions options) {
    std::string problem;
    auto service = DemoService::start(std::move(options), problem);
    EXPECT_TRUE(service) << problem;
    return service;
}

std::string formFor(std::string_view vendorId, std::string_view dateType, std::string_view date) {
    return fmt::format(
        "USERNAME=jane%40example.com&PASSWORD=a%2520b&VNDNUMBER={}&TYPEOFREPORT=Sales&DATETYPE={}&"
        "REPORTTYPE=Summary&REPORTDATE={}",
        vendorId, dateType, date);
}

bool Fetched::hasHeaderLine(std::string_view line) const {
    return std::ranges::find(headerLines, line) != headerLines.end();
}

bool Fetched::hasHeader(std::string_view nameAndColon) const {
    return std::ranges::any_of(headerLines,
                               [&](const std::string& line) { return line.starts_with(nameAndColon); });
}

CurlClient::CurlClient(std::string caCertificate)
    : handle_(curl_easy_init()), caCertificate_(std::move(caCertificate)) {
    curl_easy_setopt(handle_, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(handle_, CURLOPT_NOPROXY, "*");
    curl_easy_setopt(handle_, CURLOPT_HTTP_VERSION, CURL_HTTP_VERSION_1_1);
    curl_easy_setopt(handle_, CURLOPT_SSLVERSION, CURL_SSLVERSION_TLSv1_2);
    curl_easy_setopt(handle_, CURLOPT_WRITEFUNCTION, appendBody);
    curl_easy_setopt(handle_, CURLOPT_HEADERFUNCTION, appendHeaderLine);
    curl_blob ca{.data = caCertificate_.data(), .len = caCertificate_.size(), .flags = CURL_BLOB_COPY};
    if (!caCertificate_.empty()) {
        curl_easy_setopt(handle_, CURLOPT_CAINFO_BLOB, &ca);
    }
    setTimeout(std::chrono::seconds(20));
}

CurlClient::~CurlClient() {
    curl_easy_cleanup(handle_);
}

void CurlClient::setTimeout(std::chrono::milliseconds timeout) {
    curl_easy_setopt(handle_, CURLOPT_TIMEOUT_MS, static_cast<long>(timeout.count()));
}

Fetched CurlClient::post(const std::string& url, const std::string& form) {
    curl_easy_setopt(handle_, CURLOPT_POSTFIELDSIZE, static_cast<long>(form.size()));
    curl_easy_setopt(handle_, CURLOPT_POSTFIELDS, form.c_str());
    return perform(url);
}

Fetched CurlClient::get(const std::string& url) {
    curl_easy_setopt(handle_, CURLOPT_HTTPGET, 1L);
    return perform(url);
}

Fetched CurlClient::perform(const std::string& url) {
    Fetched fetched;
    curl_easy_setopt(handle_, CURLOPT_URL, url.c_str());
    curl_easy_setopt(handle_, CURLOPT_WRITEDATA, &fetched.body);
    curl_easy_setopt(handle_, CURLOPT_HEADERDATA, &fetched.headerLines);
    fetched.result = curl_easy_perform(handle_);
    curl_easy_getinfo(handle_, CURLINFO_RESPONSE_CODE, &fetched.status);
    return fetched;
}

Fetched fetchReport(DemoService& service, std::string_view date, std::chrono::milliseconds timeout) {
    CurlClient client(service.caCertificate());
    client.setTimeout(timeout);
    return client.post(reportUrl(service), formFor("80012345", "Daily", date));
}

std::string reportUrl(const DemoService& service) {
    return "https://" + service.reportServiceHost() + "/autoingestion.tft?";
}

std::string feedUrl(const DemoService& service) {
    return "http://" + service.updateHost() + "/Plovance/update.json";
}

FileDescriptor connectTo(std::uint16_t port) {
    FileDescriptor descriptor(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::connect(descriptor.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        ADD_FAILURE() << "cannot connect to port " << port;
    }
    return descriptor;
}

std::optional<std::string> gunzipped(std::string_view packed) {
    z_stream stream{};
    if (inflateInit2(&stream, 15 + 16) != Z_OK) {
        return std::nullopt;
    }
    std::string text;
    std::array<char, 65536> piece{};
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(packed.data()));
    stream.avail_in = static_cast<uInt>(packed.size());
    int result = Z_OK;
    while (result == Z_OK) {
        stream.next_out = reinterpret_cast<Bytef*>(piece.data());
        stream.avail_out = static_cast<uInt>(piece.size());
        result = inflate(&stream, Z_NO_FLUSH);
        text.append(piece.data(), piece.size() - stream.avail_out);
    }
    const bool isWhole = result == Z_STREAM_END && stream.avail_in == 0;
    inflateEnd(&stream);
    if (!isWhole) {
        return std::nullopt;
    }
    return text;
}

RawTlsClient::RawTlsClient(std::uint16_t port)
    : descriptor_(connectTo(port)),
      context_(SSL_CTX_new(TLS_client_method())),
      tls_((SSL_CTX_set_security_level(context_.get(), 0),
            SSL_CTX_set_min_proto_version(context_.get(), TLS1_VERSION), SSL_new(context_.get()))) {
    setReadTimeout(std::chrono::seconds(10));
    SSL_set_fd(tls_.get(), descriptor_.get());
    isConnected_ = SSL_connect(tls_.get()) == 1;
}

std::string RawTlsClient::protocol() const {
    return SSL_get_version(tls_.get());
}

void RawTlsClient::setReadTimeout(std::chrono::milliseconds timeout) {
    setSocketTimeout(descriptor_.get(), timeout);
}

bool RawTlsClient::send(std::string_view text) {
    std::size_t count = 0;
    return SSL_write_ex(tls_.get(), text.data(), text.size(), &count) == 1 && count == text.size();
}

std::string RawTlsClient::read(std::size_t count) {
    std::string text;
    std::array<char, 65536> piece{};
    while (text.size() < count) {
        ERR_clear_error();
        errno = 0;
        std::size_t got = 0;
        const int result =
            SSL_read_ex(tls_.get(), piece.data(), std::min(piece.size(), count - text.size()), &got);
        if (result == 1) {
            text.append(piece.data(), got);
            continue;
        }
        const int savedErrno = errno;
        const int error = SSL_get_error(tls_.get(), result);
        if (error == SSL_ERROR_ZERO_RETURN) {
            end_ = End::ClosedInOrder;
        } else if (error == SSL_ERROR_WANT_READ) {
            end_ = End::TimedOut;
        } else {
            end_ = savedErrno == ECONNRESET ? End::Reset : End::Closed;
        }
        return text;
    }
    return text;
}

std::string RawTlsClient::readToTheEnd() {
    return read(std::string::npos);
}

std::string rawReportRequest(std::string_view date) {
    const std::string form = formFor("80012345", "Daily", date);
    return fmt::format(
        "POST /autoingestion.tft? HTTP/1.1\r\nHost: localhost\r\n"
        "Content-Type: application/x-www-form-urlencoded\r\nContent-Length: {}\r\n\r\n{}",
        form.size(), form);
}

}  // namespace corvane::demo
