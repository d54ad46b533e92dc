#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <variant>

namespace corvane {

using FormatArgument = std::variant<std::string_view, std::int64_t, double>;

/// Fills a format of the kind that localized texts and log lines use: "%@" takes a text, "%i" an integer,
/// "%f" and "%.2f" a number, "%%" is a percent sign; a translation may number its arguments ("%2$@"). What is
/// filled in is never read as a directive. The decimal point is always "."; not-a-number is "nan", infinity
/// "inf" or
/// "-inf". A directive that has no argument, one of another kind, or is unknown stays in the text as it
/// stands.
std::string formatText(std::string_view format, std::initializer_list<FormatArgument> arguments);

}  // namespace corvane
