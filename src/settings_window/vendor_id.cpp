#include "settings_window/vendor_id.h"

#include <utf8.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <string>

namespace corvane {

namespace {

bool isWhitespace(char32_t character) {
    struct Range {
        char32_t first;
        char32_t last;
    };
    constexpr std::array<Range, 10> ranges{{{0x0009, 0x000D},
                                            {0x0020, 0x0020},
                                            {0x0085, 0x0085},
                                            {0x00A0, 0x00A0},
                                            {0x1680, 0x1680},
                                            {0x2000, 0x200B},
                                            {0x2028, 0x2029},
                                            {0x202F, 0x202F},
                                            {0x205F, 0x205F},
                                            {0x3000, 0x3000}}};
    return std::any_of(ranges.begin(), ranges.end(), [character](const Range& range) {
        return range.first <= character && character <= range.last;
    });
}

/// The decimal digits (category Nd) of the Basic Multilingual Plane; they stand in blocks of ten.
bool isDecimalDigit(char32_t character) {
    constexpr std::array<char32_t, 37> zeros{0x0030, 0x0660, 0x06F0, 0x07C0, 0x0966, 0x09E6, 0x0A66, 0x0AE6,
                                             0x0B66, 0x0BE6, 0x0C66, 0x0CE6, 0x0D66, 0x0DE6, 0x0E50, 0x0ED0,
                                             0x0F20, 0x1040, 0x1090, 0x17E0, 0x1810, 0x1946, 0x19D0, 0x1A80,
                                             0x1A90, 0x1B50, 0x1BB0, 0x1C40, 0x1C50, 0xA620, 0xA8D0, 0xA900,
                                             0xA9D0, 0xA9F0, 0xAA50, 0xABF0, 0xFF10};
    return std::any_of(zeros.begin(), zeros.end(),
                       [character](char32_t zero) { return zero <= character && character < zero + 10; });
}

bool isSign(char32_t character) {
    return character == U'+' || character == U'-';
}

}  // namespace

bool isNumericVendorID(std::string_view text) {
    if (!utf8::is_valid(text.begin(), text.end()))
        return false;
    std::u32string characters;
    utf8::utf8to32(text.begin(), text.end(), std::back_inserter(characters));

    const auto end = characters.end();
    auto position = std::find_if_not(characters.begin(), end, isWhitespace);
    if (position != end && isSign(*position))
        position = std::find_if_not(position + 1, end, isWhitespace);
    const auto afterDigits = std::find_if_not(position, end, isDecimalDigit);
    return afterDigits != position && std::all_of(afterDigits, end, isWhitespace);
}

}  // namespace corvane
