// The addresses of stored files, and texts in their place.

#include "app/resource_url.h"
#include "fuzz_input.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace corvane;
    const std::string text(asText({data, size}));
    const auto path = ResourceUrl(text).filePath();
    CORVANE_EXPECT(!path || ResourceUrl(text).isFileUrl());
    if (text.find('\0') != std::string::npos)
        return 0;
    const ResourceUrl url = ResourceUrl::ofFile("/" + text);
    CORVANE_EXPECT(url.filePath());
    CORVANE_EXPECT(url.filePath()->native() == "/" + text);
    return 0;
}
