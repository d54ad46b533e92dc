#include "property_list_checks.h"

#include <optional>

#include "fuzz_input.h"
#include "platform/property_list/binary_property_list_writer.h"
#include "platform/property_list/property_list_reader.h"

namespace corvane::fuzz {

void checkPropertyList(ByteView file) {
    const std::optional<PropertyListValue> value = readPropertyList(file);
    if (!value)
        return;
    const Bytes written = writeBinaryPropertyList(*value);
    const std::optional<PropertyListValue> again = readPropertyList(written);
    CORVANE_EXPECT(again);
    // The bytes and not the values are compared, because not-a-number differs from itself.
    CORVANE_EXPECT(writeBinaryPropertyList(*again) == written);
}

}  // namespace corvane::fuzz
