#include "platform/text_format.h"

#include <fmt/format.h>

#include <cmath>
#include <cstddef>
#include <optional>

namespace corvane {
namespace {

struct Directive {
    std::size_t length = 0;  ///< with the percent sign
    std::optional<std::size_t> position;
    int precision = 6;
    bool hasPrecision = false;
    char conversion = 0;
};

/// Reads digits from `index` on; absent when there is none, or more of them than a directive can need.
std::optional<int> readNumber(std::string_view text, std::size_t& index) {
    constexpr std::size_t maximumDigits = 2;
    const std::size_t start = index;
    int number = 0;
    for (; index < text.size() && text[index] >= '0' && text[index] <= '9'; ++index) {
        if (index - start == maximumDigits)
            return std::nullopt;
        number = number * 10 + (text[index] - '0');
    }
    if (index == start)
        return std::nullopt;
    return number;
}

/// Reads the directive at the start of `text`, which begins with a percent sign.
std::optional<Directive> readDirective(std::string_view text) {
    Directive directive;
    std::size_t index = 1;
    std::size_t afterNumber = index;
    const std::optional<int> position = readNumber(text, afterNumber);
    if (position && *position > 0 && afterNumber < text.size() && text[afterNumber] == '$') {
        directive.position = static_cast<std::size_t>(*position) - 1;
        index = afterNumber + 1;
    }
    if (index < text.size() && text[index] == '.') {
        ++index;
        const std::optional<int> precision = readNumber(text, index);
        if (!precision)
            return std::nullopt;
        directive.precision = *precision;
        directive.hasPrecision = true;
    }
    if (index == text.size())
        return std::nullopt;
    directive.conversion = text[index];
    directive.length = index + 1;
    return directive;
}

std::string formatNumber(double number, int precision) {
    if (std::isnan(number))
        return "nan";
    return fmt::format("{:.{}f}", number, precision);
}

/// Absent when the argument is not of the directive's kind.
std::optional<std::string> fill(const Directive& directive, const FormatArgument& argument) {
    if (directive.conversion == 'f') {
        if (const auto* number = std::get_if<double>(&argument))
            return formatNumber(*number, directive.precision);
        return std::nullopt;
    }
    if (directive.hasPrecision)
        return std::nullopt;
    if (directive.conversion == '@') {
        if (const auto* text = std::get_if<std::string_view>(&argument))
            return std::string(*text);
    }
    if (directive.conversion == 'i') {
        if (const auto* number = std::get_if<std::int64_t>(&argument))
            return std::to_string(*number);
    }
    return std::nullopt;
}

bool takesArgument(const Directive& directive) {
    return directive.conversion == '@' || directive.conversion == 'i' || directive.conversion == 'f';
}

}  // namespace

std::string formatText(std::string_view format, std::initializer_list<FormatArgument> arguments) {
    std::string result;
    std::size_t nextPosition = 0;
    while (!format.empty()) {
        const std::size_t plainLength = std::min(format.find('%'), format.size());
        result += format.substr(0, plainLength);
        format.remove_prefix(plainLength);
        if (format.empty())
            break;
        if (format.starts_with("%%")) {
            result += '%';
            format.remove_prefix(2);
            continue;
        }
        const std::optional<Directive> directive = readDirective(format);
        if (!directive || !takesArgument(*directive)) {
            result += '%';
            format.remove_prefix(1);
            continue;
        }
        const std::size_t position = directive->position ? *directive->position : nextPosition++;
        std::optional<std::string> filled;
        if (position < arguments.size())
            filled = fill(*directive, arguments.begin()[position]);
        result += filled ? *filled : std::string(format.substr(0, directive->length));
        format.remove_prefix(directive->length);
    }
    return result;
}

}  // namespace corvane
