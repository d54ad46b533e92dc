#include "demo_service/request_reader.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>
#include <utility>

namespace corvane::demo {

namespace {

constexpr std::size_t kMaximumHeadSize = std::size_t{64} * 1024;
constexpr std::size_t kMaximumBodySize = std::size_t{1024} * 1024;

constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kHeadEnd = "\r\n\r\n";

char lowerCase(char character) {
    const bool isUpper = character >= 'A' && character <= 'Z';
    return isUpper ? static_cast<char>(character - 'A' + 'a') : character;
}

bool isSameName(std::string_view first, std::string_view second) {
    return std::ranges::equal(first, second, {}, lowerCase, lowerCase);
}

std::string_view withoutBlanks(std::string_view text) {
    const std::size_t first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

ReceivedRequest splitHead(std::string_view head) {
    ReceivedRequest request;
    const std::size_t firstEnd = head.find(kLineEnd);
    request.requestLine = head.substr(0, firstEnd);
    while (!head.empty()) {
        const std::size_t end = head.find(kLineEnd);
        if (end == std::string_view::npos) {
            break;
        }
        head.remove_prefix(end + kLineEnd.size());
        request.headerLines.emplace_back(head.substr(0, head.find(kLineEnd)));
    }
    return request;
}

/// Absent for a length that is no number or too large; 0 when none is given.
std::optional<std::size_t> bodySizeOf(const ReceivedRequest& request) {
    const auto text = headerOf(request, "Content-Length");
    if (!text) {
        return 0;
    }
    std::size_t size = 0;
    const auto [end, error] = std::from_chars(text->data(), text->data() + text->size(), size);
    if (error != std::errc{} || end != text->data() + text->size() || size > kMaximumBodySize) {
        return std::nullopt;
    }
    return size;
}

}  // namespace

std::optional<std::string> headerOf(const ReceivedRequest& request, std::string_view name) {
    for (const std::string& line : request.headerLines) {
        const std::size_t colon = line.find(':');
        if (colon != std::string::npos && isSameName(std::string_view(line).substr(0, colon), name)) {
            return std::string(withoutBlanks(std::string_view(line).substr(colon + 1)));
        }
    }
    return std::nullopt;
}

RequestReader::RequestReader(ByteStream& stream, std::function<void(std::size_t)> countBytes)
    : stream_(stream), countBytes_(std::move(countBytes)) {}

bool RequestReader::readMore() {
    std::array<std::uint8_t, 16384> piece{};
    const std::size_t count = stream_.read(piece);
    countBytes_(count);
    buffer_.append(asText(ByteView(piece).first(count)));
    return count > 0;
}

std::optional<ReceivedRequest> RequestReader::readHead() {
    std::size_t end = buffer_.find(kHeadEnd);
    while (end == std::string::npos) {
        if (buffer_.size() > kMaximumHeadSize || !readMore()) {
            return std::nullopt;
        }
        end = buffer_.find(kHeadEnd);
    }
    ReceivedRequest request = splitHead(std::string_view(buffer_).substr(0, end));
    buffer_.erase(0, end + kHeadEnd.size());
    return request;
}

bool RequestReader::readBody(ReceivedRequest& request) {
    const auto size = bodySizeOf(request);
    if (!size) {
        return false;
    }
    while (buffer_.size() < *size) {
        if (!readMore()) {
            return false;
        }
    }
    request.body = toBytes(std::string_view(buffer_).substr(0, *size));
    buffer_.erase(0, *size);
    return true;
}

std::optional<ReceivedRequest> RequestReader::next() {
    auto request = readHead();
    if (!request || !readBody(*request)) {
        return std::nullopt;
    }
    return request;
}

}  // namespace corvane::demo
