// A report as the service sends it: the first line is its file name, the rest its bytes.

#include <utf8.h>

#include <optional>
#include <string>

#include "engine/report_storage.h"
#include "fuzz_input.h"
#include "platform/memory/in_memory_file_manager.h"
#include "platform/memory/in_memory_log.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace corvane;
    fuzz::FuzzInput input(data, size);
    const std::string name(input.takeLine());
    const Bytes body(input.rest().begin(), input.rest().end());

    InMemoryLog log;
    InMemoryFileManager files;
    ReportStorage storage(files, log);
    const std::optional<std::string> path = storage.createTempFile(name, body);
    if (!path)
        return 0;
    const std::filesystem::path stored(*path);
    CORVANE_EXPECT(stored.parent_path() == storage.reportPath());
    CORVANE_EXPECT(stored.filename().native().ends_with(".txt"));
    const std::optional<Bytes> text = files.contentsAtPath(stored);
    CORVANE_EXPECT(!text || utf8::is_valid(text->begin(), text->end()));
    // Nothing else was written anywhere.
    CORVANE_EXPECT(files.contentsOfDirectory(storage.reportPath()).size() == (text ? 1U : 0U));
    return 0;
}
