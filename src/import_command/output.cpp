#include "import_command/output.h"

#include <unistd.h>

#include <cstdio>

#include "import_command/interruption.h"
#include "import_command/messages.h"

namespace corvane::import_command {
namespace {

constexpr std::string_view startOfEmptyLine = "\r\x1B[K";

}  // namespace

Output::Output() : isTerminal_(isatty(STDOUT_FILENO) == 1) {}

void Output::showProgress(std::size_t reports) {
    if (!isTerminal_)
        return;
    write(startOfEmptyLine);
    write(progressText(reports));
    std::fflush(stdout);
    showsProgress_ = true;
    setLineIsOpen(true);
}

void Output::clearProgress() {
    if (!showsProgress_)
        return;
    write(startOfEmptyLine);
    std::fflush(stdout);
    showsProgress_ = false;
    setLineIsOpen(false);
}

void Output::writeReports(const std::filesystem::path& folder, const std::vector<std::string>& names) {
    clearProgress();
    for (const std::string& name : names) {
        const std::string path = (folder / name).native();
        write((isTerminal_ ? forTerminal(path) : path) + '\n');
    }
    write(summaryLine(names.size()));
}

void Output::write(std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
}

bool Output::flush() {
    return std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
}

}  // namespace corvane::import_command
