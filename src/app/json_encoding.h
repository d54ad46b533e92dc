#pragma once

#include <optional>
#include <string>

#include "platform/bytes.h"

namespace corvane {

/// The JSON text in UTF-8. What it was encoded in, UTF-8, UTF-16 or UTF-32 of either byte order, is told by
/// the byte order mark, else by where the zero bytes of its first characters stand (RFC 4627). A byte order
/// mark stays. UTF-8 is handed on unchecked; anything else that is not valid is absent.
std::optional<std::string> jsonTextInUtf8(ByteView bytes);

}  // namespace corvane
