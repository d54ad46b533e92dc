#pragma once

#include <cstddef>
#include <optional>

#include "platform/bytes.h"
#include "platform/property_list/property_list_value.h"

namespace corvane {

/// Values nested deeper are not read.
inline constexpr std::size_t maximumPropertyListDepth = 512;

/// A file whose values would take more memory, in bytes, is not read. Objects that are referred to more than
/// once count each time.
inline constexpr std::size_t maximumPropertyListContent = std::size_t{24} << 20;

/// The whole content of a property list, binary ("bplist00") or XML in UTF-8. Absent when the file is not a
/// property list, any of its objects in use is malformed or is none of the types of PropertyListValue, or one
/// of the limits is passed. Of a key that occurs twice in a dictionary the first counts. An integer is signed
/// unless only an unsigned one can hold it. In XML a dictionary whose only key is `CF$UID`, with an integer,
/// is a UID.
std::optional<PropertyListValue> readPropertyList(ByteView file);

}  // namespace corvane
