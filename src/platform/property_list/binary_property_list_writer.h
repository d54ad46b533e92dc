#pragma once

#include "platform/bytes.h"
#include "platform/property_list/property_list_value.h"

namespace corvane {

/// A binary property list ("bplist00") of the value, which is nested no deeper than maximumPropertyListDepth.
/// Equal values give equal bytes: dictionaries are written in the order of their keys, equal texts once,
/// counts, references and offsets in the smallest width. What is not valid UTF-8 in a text becomes U+FFFD.
Bytes writeBinaryPropertyList(const PropertyListValue& value);

}  // namespace corvane
