#include "app/resource_url.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>

namespace corvane {

namespace {

constexpr std::string_view scheme = "file:";
constexpr std::string_view keptInPath =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/!$&'()*+,;=:@";

std::optional<unsigned char> escapedByte(std::string_view digits) {
    if (digits.size() < 2)
        return std::nullopt;
    unsigned char byte = 0;
    const char* const end = digits.data() + 2;
    const auto [parsed, error] = std::from_chars(digits.data(), end, byte, 16);
    if (error != std::errc{} || parsed != end)
        return std::nullopt;
    return byte;
}

std::string undoEscapes(std::string_view text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = text[i] == '%' ? escapedByte(text.substr(i + 1)) : std::nullopt;
        result += byte ? static_cast<char>(*byte) : text[i];
        if (byte)
            i += 2;
    }
    return result;
}

bool equalsWithoutCase(char a, char b) {
    return (a >= 'A' && a <= 'Z' ? static_cast<char>(a - 'A' + 'a') : a) == b;
}

}  // namespace

ResourceUrl ResourceUrl::ofFile(const std::filesystem::path& path) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text = "file://";
    for (const char character : path.native()) {
        if (keptInPath.find(character) != std::string_view::npos) {
            text += character;
            continue;
        }
        const auto byte = static_cast<unsigned char>(character);
        text += {'%', digits[byte >> 4U], digits[byte & 0xFU]};
    }
    return ResourceUrl(std::move(text));
}

bool ResourceUrl::isFileUrl() const {
    return text_.size() >= scheme.size() &&
           std::equal(scheme.begin(), scheme.end(), text_.begin(),
                      [](char a, char b) { return equalsWithoutCase(b, a); });
}

std::optional<std::filesystem::path> ResourceUrl::filePath() const {
    if (!isFileUrl())
        return std::nullopt;
    std::string_view rest = std::string_view(text_).substr(scheme.size());
    rest = rest.substr(0, rest.find_first_of("?#"));
    if (rest.starts_with("//")) {
        const std::size_t path = rest.find('/', 2);
        rest = path == std::string_view::npos ? std::string_view() : rest.substr(path);
    }
    if (rest.empty())
        return std::nullopt;
    return std::filesystem::path(undoEscapes(rest));
}

}  // namespace corvane
