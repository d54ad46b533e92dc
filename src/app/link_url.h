#pragma once

#include <string_view>

namespace corvane {

/// Whether the text is a URL with a scheme, as it stands: made of the characters that a URL may hold (RFC
/// 3986), with two hexadecimal digits after each percent sign and one "#" at most. Nothing is trimmed or
/// escaped to make one.
bool isAbsoluteURL(std::string_view text);

}  // namespace corvane
