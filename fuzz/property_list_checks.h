#pragma once

#include "platform/bytes.h"

namespace corvane::fuzz {

/// Reads the file, and holds that what was read can be written and read again with nothing lost.
void checkPropertyList(ByteView file);

}  // namespace corvane::fuzz
