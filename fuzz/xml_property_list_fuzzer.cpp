#include "fuzz_input.h"
#include "property_list_checks.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    corvane::fuzz::checkPropertyList({data, size});
    return 0;
}
