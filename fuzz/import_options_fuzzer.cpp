// The object of a host application's request.

#include <optional>

#include "app/auto_import_options.h"
#include "fuzz_input.h"

namespace {

constexpr std::size_t longestLogText = 8192;

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto members = corvane::parseJsonObject(corvane::asText({data, size}));
    if (!members)
        return 0;
    const corvane::AutoImportOptions options(*members);
    const std::string description = options.description();
    CORVANE_EXPECT(description.size() <= longestLogText);
    CORVANE_EXPECT(description.starts_with('{') && description.ends_with('}'));
    CORVANE_EXPECT(members->contains("isLite") || !options.isLite());
    return 0;
}
