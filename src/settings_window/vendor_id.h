#pragma once

#include <string_view>

namespace corvane {

/// Whether the text is one whole number: an optional sign and one or more decimal digits of any script, with
/// whitespace allowed before, after, and between sign and digits. How large the number is does not matter.
/// False for text that is not valid UTF-8.
bool isNumericVendorID(std::string_view text);

}  // namespace corvane
