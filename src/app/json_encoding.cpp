#include "app/json_encoding.h"

#include <utf8.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>

namespace corvane {

namespace {

struct Encoding {
    std::size_t unitSize = 1;
    bool isBigEndian = false;
};

Encoding detectEncoding(ByteView bytes) {
    constexpr std::array<std::uint8_t, 4> padding{1, 1, 1, 1};  // a shorter text has no zeros there
    std::array<std::uint8_t, 4> start = padding;
    for (std::size_t i = 0; i < start.size() && i < bytes.size(); ++i)
        start[i] = bytes[i];
    const auto [a, b, c, d] = start;
    if (a == 0 && b == 0)
        return {.unitSize = 4, .isBigEndian = true};
    if (b == 0 && c == 0 && d == 0)
        return {.unitSize = 4, .isBigEndian = false};
    if (a == 0xFF && b == 0xFE)
        return {.unitSize = c == 0 && d == 0 ? std::size_t{4} : std::size_t{2}, .isBigEndian = false};
    if (a == 0 || (a == 0xFE && b == 0xFF))
        return {.unitSize = 2, .isBigEndian = true};
    if (b == 0)
        return {.unitSize = 2, .isBigEndian = false};
    return {};
}

char32_t unitAt(ByteView bytes, Encoding encoding, std::size_t position) {
    char32_t unit = 0;
    for (std::size_t i = 0; i < encoding.unitSize; ++i) {
        const std::size_t offset = encoding.isBigEndian ? i : encoding.unitSize - 1 - i;
        unit = (unit << 8U) | bytes[position + offset];
    }
    return unit;
}

bool isHighSurrogate(char32_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}

bool isLowSurrogate(char32_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

bool isCharacter(char32_t value) {
    return value <= 0x10FFFF && !isHighSurrogate(value) && !isLowSurrogate(value);
}

std::optional<std::string> decode(ByteView bytes, Encoding encoding) {
    if (bytes.size() % encoding.unitSize != 0)
        return std::nullopt;
    std::string text;
    for (std::size_t position = 0; position < bytes.size(); position += encoding.unitSize) {
        char32_t character = unitAt(bytes, encoding, position);
        const std::size_t next = position + encoding.unitSize;
        if (encoding.unitSize == 2 && isHighSurrogate(character) && next < bytes.size()) {
            const char32_t low = unitAt(bytes, encoding, next);
            if (!isLowSurrogate(low))
                return std::nullopt;
            character = 0x10000 + ((character - 0xD800) << 10U) + (low - 0xDC00);
            position = next;
        }
        if (!isCharacter(character))
            return std::nullopt;
        utf8::append(character, std::back_inserter(text));
    }
    return text;
}

}  // namespace

std::optional<std::string> jsonTextInUtf8(ByteView bytes) {
    const Encoding encoding = detectEncoding(bytes);
    if (encoding.unitSize == 1)
        return std::string(asText(bytes));
    return decode(bytes, encoding);
}

}  // namespace corvane
