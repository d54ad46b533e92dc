#include "core/form_value_encoding.h"

#include <utf8.h>

#include <array>
#include <cstddef>

namespace corvane {

namespace {

using CharacterSet = std::array<bool, 256>;

constexpr std::size_t indexOf(char character) {
    return static_cast<unsigned char>(character);
}

constexpr CharacterSet lettersDigitsAnd(std::string_view others) {
    CharacterSet set{};
    for (const char character : std::string_view("abcdefghijklmnopqrstuvwxyz"
                                                 "ABCDEFGHIJKLMNOPQRSTUVWXYZ"
                                                 "0123456789"))
        set[indexOf(character)] = true;
    for (const char character : others)
        set[indexOf(character)] = true;
    return set;
}

constexpr CharacterSet legalInQuery = lettersDigitsAnd("!$&'()*+,-./:;=?@_~");
constexpr CharacterSet keptInForm = lettersDigitsAnd("&-.=_~");

std::optional<std::string> percentEncode(std::string_view text, const CharacterSet& kept) {
    if (!utf8::is_valid(text.begin(), text.end()))
        return std::nullopt;
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string encoded;
    encoded.reserve(text.size());
    for (const char character : text) {
        const std::size_t byte = indexOf(character);
        if (kept[byte]) {
            encoded += character;
            continue;
        }
        encoded += '%';
        encoded += digits[byte / 16];
        encoded += digits[byte % 16];
    }
    return encoded;
}

}  // namespace

std::optional<std::string> escapeIllegalURLCharacters(std::string_view text) {
    return percentEncode(text, legalInQuery);
}

std::optional<std::string> URLEncodeString(std::string_view text) {
    return percentEncode(text, keptInForm);
}

}  // namespace corvane
