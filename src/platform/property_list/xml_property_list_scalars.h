#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/bytes.h"
#include "platform/property_list/property_list_objects.h"

namespace corvane {

// What stands between the tags of an XML property list. Each is absent for malformed content.

/// Character and predefined entities resolved, CDATA sections taken literally, comments left out, line ends
/// made "\n". An entity that a document type would have to define is malformed.
std::optional<std::string> xmlText(std::string_view content);

/// Decimal or, after "0x", hexadecimal, with an optional sign, from the least signed to the greatest unsigned
/// 64-bit number.
std::optional<PropertyListObject> xmlInteger(std::string_view content);

std::optional<double> xmlReal(std::string_view content);

/// `YYYY-MM-DDTHH:MM:SSZ`.
std::optional<PropertyListDate> xmlDate(std::string_view content);

/// Base64; white space anywhere, the padding may be missing.
std::optional<Bytes> xmlData(std::string_view content);

}  // namespace corvane
