// Two versions on two lines: the order of versions is one.

#include <algorithm>

#include "app/version_components.h"
#include "fuzz_input.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    corvane::fuzz::FuzzInput input(data, size);
    const std::string_view firstText = input.takeLine();
    const auto first = corvane::versionComponents(firstText);
    const auto second = corvane::versionComponents(corvane::asText(input.rest()));
    CORVANE_EXPECT(first.size() ==
                   1 + static_cast<std::size_t>(std::count(firstText.begin(), firstText.end(), '.')));
    CORVANE_EXPECT((first < second) + (second < first) + (first == second) == 1);
    auto longer = first;
    longer.push_back(0);
    CORVANE_EXPECT(first < longer);
    return 0;
}
