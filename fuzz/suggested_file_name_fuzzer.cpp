// The headers of an answer as the HTTP client hands them over: the URL, then one header on each line.

#include <string>

#include "fuzz_input.h"
#include "platform/suggested_file_name.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace corvane;
    fuzz::FuzzInput input(data, size);
    HttpResponse response;
    response.url = std::string(input.takeLine());
    while (!input.isEmpty()) {
        const std::string_view line = input.takeLine();
        const std::size_t colon = line.find(':');
        if (colon == std::string_view::npos)
            response.headers.push_back({"Content-Disposition", std::string(line)});
        else
            response.headers.push_back(
                {std::string(line.substr(0, colon)), std::string(line.substr(colon + 1))});
    }
    const std::string name = suggestedFileName(response);
    CORVANE_EXPECT(!name.empty());
    for (const HttpHeader& header : response.headers) {
        const auto value = response.headerField(header.name);
        CORVANE_EXPECT(value && value->find(header.value) != std::string::npos);
    }
    return 0;
}
