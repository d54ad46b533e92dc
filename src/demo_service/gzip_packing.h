#pragma once

#include <string_view>

#include "platform/bytes.h"

namespace corvane::demo {

/// The text as one gzip member without name and time, so that equal texts give equal bytes. Reports of many
/// megabytes are packed fast rather than small.
Bytes gzipPacked(std::string_view text);

}  // namespace corvane::demo
