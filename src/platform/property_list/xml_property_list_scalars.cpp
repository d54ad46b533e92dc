#include "platform/property_list/xml_property_list_scalars.h"

#include <utf8.h>
#include <array>
#include <charconv>
#include <chrono>
#include <cstdint>
#include <iterator>
#include <limits>
#include <utility>

namespace corvane {

namespace {

constexpr std::string_view cdataBegin = "<![CDATA[";
constexpr std::string_view cdataEnd = "]]>";
constexpr std::string_view commentBegin = "<!--";
constexpr std::string_view commentEnd = "-->";
constexpr std::int64_t secondsFrom1970To2001 = 978'307'200;
constexpr std::uint32_t greatestCharacter = 0x10FFFF;

bool isXmlSpace(char character) {
    return character == ' ' || character == '\t' || character == '\n' || character == '\r';
}

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && isXmlSpace(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isXmlSpace(text.back()))
        text.remove_suffix(1);
    return text;
}

template <typename Number>
std::optional<Number> wholeNumber(std::string_view digits, int base) {
    Number number = 0;
    const char* end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, number, base);
    if (error != std::errc() || stop != end)
        return std::nullopt;
    return number;
}

bool isCharacter(std::uint32_t character) {
    const bool isSurrogate = character >= 0xD800 && character <= 0xDFFF;
    return character != 0 && character <= greatestCharacter && !isSurrogate;
}

/// The text for what stands between "&" and ";".
std::optional<std::string> entity(std::string_view name) {
    static constexpr std::array<std::pair<std::string_view, char>, 5> predefined = {
        {{"amp", '&'}, {"lt", '<'}, {"gt", '>'}, {"quot", '"'}, {"apos", '\''}}};
    for (const auto& [known, character] : predefined) {
        if (name == known)
            return std::string(1, character);
    }
    if (!name.starts_with('#'))
        return std::nullopt;
    name.remove_prefix(1);
    const bool isHexadecimal = name.starts_with('x');
    if (isHexadecimal)
        name.remove_prefix(1);
    const auto character = wholeNumber<std::uint32_t>(name, isHexadecimal ? 16 : 10);
    if (!character || !isCharacter(*character))
        return std::nullopt;
    std::string text;
    utf8::unchecked::append(*character, std::back_inserter(text));
    return text;
}

class TextDecoder {
  public:
    explicit TextDecoder(std::string_view content) : rest_(content) {}

    std::optional<std::string> decode() {
        text_.reserve(rest_.size());
        while (!rest_.empty()) {
            if (!decodeNext())
                return std::nullopt;
        }
        return std::move(text_);
    }

  private:
    bool decodeNext() {
        if (rest_.front() == '&')
            return decodeEntity();
        if (rest_.starts_with(cdataBegin)) {
            const auto literal = takeBetween(cdataBegin, cdataEnd);
            if (literal)
                appendWithLineEnds(*literal);
            return literal.has_value();
        }
        if (rest_.starts_with(commentBegin))
            return takeBetween(commentBegin, commentEnd).has_value();
        if (rest_.front() == '<')
            return false;
        const std::string_view plain = rest_.substr(0, rest_.find_first_of("&<"));
        appendWithLineEnds(plain);
        rest_.remove_prefix(plain.size());
        return true;
    }

    bool decodeEntity() {
        constexpr std::size_t longestEntity = 12;
        const std::size_t end = rest_.substr(0, longestEntity).find(';');
        if (end == std::string_view::npos)
            return false;
        const std::optional<std::string> resolved = entity(rest_.substr(1, end - 1));
        if (!resolved)
            return false;
        text_ += *resolved;
        rest_.remove_prefix(end + 1);
        return true;
    }

    std::optional<std::string_view> takeBetween(std::string_view begin, std::string_view end) {
        const std::size_t stop = rest_.find(end, begin.size());
        if (stop == std::string_view::npos)
            return std::nullopt;
        const std::string_view between = rest_.substr(begin.size(), stop - begin.size());
        rest_.remove_prefix(stop + end.size());
        return between;
    }

    void appendWithLineEnds(std::string_view plain) {
        for (std::size_t index = 0; index < plain.size(); ++index) {
            if (plain[index] != '\r')
                text_ += plain[index];
            else if (index + 1 == plain.size() || plain[index + 1] != '\n')
                text_ += '\n';
        }
    }

    std::string_view rest_;
    std::string text_;
};

std::optional<std::uint32_t> base64Value(char character) {
    if (character >= 'A' && character <= 'Z')
        return static_cast<std::uint32_t>(character - 'A');
    if (character >= 'a' && character <= 'z')
        return static_cast<std::uint32_t>(character - 'a' + 26);
    if (character >= '0' && character <= '9')
        return static_cast<std::uint32_t>(character - '0' + 52);
    if (character == '+')
        return 62U;
    return character == '/' ? std::optional(63U) : std::nullopt;
}

std::optional<int> digitsAt(std::string_view text, std::size_t position, std::size_t count) {
    int number = 0;
    for (const char digit : text.substr(position, count)) {
        if (digit < '0' || digit > '9')
            return std::nullopt;
        number = number * 10 + (digit - '0');
    }
    return number;
}

}  // namespace

std::optional<std::string> xmlText(std::string_view content) {
    return TextDecoder(content).decode();
}

std::optional<PropertyListObject> xmlInteger(std::string_view content) {
    std::string_view digits = trimmed(content);
    const bool isNegative = digits.starts_with('-');
    if (isNegative || digits.starts_with('+'))
        digits.remove_prefix(1);
    const bool isHexadecimal = digits.starts_with("0x") || digits.starts_with("0X");
    if (isHexadecimal)
        digits.remove_prefix(2);
    const auto magnitude = wholeNumber<std::uint64_t>(digits, isHexadecimal ? 16 : 10);
    if (!magnitude)
        return std::nullopt;

    constexpr std::uint64_t greatestSigned = std::numeric_limits<std::int64_t>::max();
    if (isNegative) {
        if (*magnitude > greatestSigned + 1)
            return std::nullopt;
        return static_cast<std::int64_t>(0 - *magnitude);
    }
    if (*magnitude > greatestSigned)
        return *magnitude;
    return static_cast<std::int64_t>(*magnitude);
}

std::optional<double> xmlReal(std::string_view content) {
    std::string_view text = trimmed(content);
    if (text.starts_with('+')) {
        text.remove_prefix(1);
        if (text.starts_with('-'))
            return std::nullopt;
    }
    double number = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stop != end)
        return std::nullopt;
    return number;
}

std::optional<PropertyListDate> xmlDate(std::string_view content) {
    constexpr std::string_view form = "dddd-dd-ddTdd:dd:ddZ";
    const std::string_view text = trimmed(content);
    if (text.size() != form.size())
        return std::nullopt;
    for (std::size_t index = 0; index < form.size(); ++index) {
        if (form[index] != 'd' && form[index] != text[index])
            return std::nullopt;
    }
    const auto year = digitsAt(text, 0, 4);
    const auto month = digitsAt(text, 5, 2);
    const auto day = digitsAt(text, 8, 2);
    const auto hour = digitsAt(text, 11, 2);
    const auto minute = digitsAt(text, 14, 2);
    const auto second = digitsAt(text, 17, 2);
    if (!year || !month || !day || !hour || !minute || !second)
        return std::nullopt;

    const std::chrono::year_month_day date(std::chrono::year(*year),
                                           std::chrono::month(static_cast<unsigned>(*month)),
                                           std::chrono::day(static_cast<unsigned>(*day)));
    if (!date.ok() || *hour > 23 || *minute > 59 || *second > 60)
        return std::nullopt;
    const std::int64_t days = std::chrono::sys_days(date).time_since_epoch().count();
    const std::int64_t seconds = ((days * 24 + *hour) * 60 + *minute) * 60 + *second;
    return PropertyListDate{static_cast<double>(seconds - secondsFrom1970To2001)};
}

std::optional<Bytes> xmlData(std::string_view content) {
    Bytes bytes;
    bytes.reserve(content.size() / 4 * 3);
    std::uint32_t bits = 0;
    int bitCount = 0;
    bool isPadded = false;
    for (const char character : content) {
        if (isXmlSpace(character))
            continue;
        if (character == '=') {
            isPadded = true;
            continue;
        }
        const std::optional<std::uint32_t> value = base64Value(character);
        if (!value || isPadded)
            return std::nullopt;
        bits = (bits << 6U | *value) & 0xFFFFU;
        bitCount += 6;
        if (bitCount >= 8) {
            bitCount -= 8;
            bytes.push_back(static_cast<std::uint8_t>(bits >> static_cast<unsigned>(bitCount)));
        }
    }
    // Six bits left over are a lone character, from which no byte can come.
    if (bitCount == 6)
        return std::nullopt;
    return bytes;
}

}  // namespace corvane
