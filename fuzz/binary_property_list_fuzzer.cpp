#include "fuzz_input.h"
#include "property_list_checks.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    corvane::Bytes file = corvane::toBytes("bplist00");
    file.insert(file.end(), data, data + size);
    corvane::fuzz::checkPropertyList(file);
    return 0;
}
