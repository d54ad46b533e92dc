#include "import_command/messages.h"

#include <fmt/format.h>
#include <utf8/checked.h>

#include "import_command/arguments.h"

namespace corvane::import_command {
namespace {

constexpr std::string_view commandName = "corvane-import";

std::string countOfReports(std::size_t reports) {
    if (reports == 0)
        return "no new reports";
    return reports == 1 ? "1 new report" : fmt::format("{} new reports", reports);
}

bool isControl(char32_t character) {
    return character < 0x20 || (character >= 0x7F && character < 0xA0);
}

// Characters that turn or hide the text around them.
bool isInvisibleFormat(char32_t character) {
    return (character >= 0x200B && character <= 0x200F) || (character >= 0x2028 && character <= 0x202E) ||
           (character >= 0x2060 && character <= 0x206F) || character == 0xFEFF || character == 0x061C;
}

void appendEscaped(std::string& shown, std::string_view bytes) {
    for (const char byte : bytes)
        shown += fmt::format("\\x{:02X}", static_cast<unsigned char>(byte));
}

}  // namespace

std::string helpText() {
    return fmt::format(R"(Usage: {0} [--lite] [--timeout SECONDS]
Ask Corvane for an import of sales reports and wait until it is over.

Corvane is started if it does not run yet. Each new or rewritten report is named
by its path on a line of its own, followed by a line with their number.

      --lite             import for the Lite edition of the host application
      --timeout SECONDS  wait no longer than that; default: {1} (one hour)
  -h, --help             show this help and end
      --version          show the version and end

Exit status:
  0  the import is over
  1  the import could not be asked for, or Corvane ended before the import did
  2  wrong usage
  3  the import was not over within the time given; it goes on

The end of an import carries no name: if another one is under way, the first end
of the two is taken for the end of this one. Without any account there is no
import, and so no end of one.
)",
                       commandName, Arguments::defaultTimeout.count());
}

std::string versionText() {
    return fmt::format("{} (Corvane) {}\n", commandName, CORVANE_VERSION);
}

std::string usageProblem(std::string_view problem) {
    return problemLine(problem) + fmt::format("Try '{} --help' for more information.\n", commandName);
}

std::string problemLine(std::string_view problem) {
    return fmt::format("{}: {}\n", commandName, forTerminal(problem));
}

std::string timeoutProblem(std::chrono::seconds timeout) {
    return fmt::format("the import was not over within {} {}", timeout.count(),
                       timeout.count() == 1 ? "second" : "seconds");
}

std::string progressText(std::size_t reports) {
    return fmt::format("Importing: {} so far", countOfReports(reports));
}

std::string summaryLine(std::size_t reports) {
    return fmt::format("Import finished: {}.\n", countOfReports(reports));
}

std::string optionsText(bool isLite) {
    return isLite ? R"({"isLite": true})" : R"({"isLite": false})";
}

std::string forTerminal(std::string_view text) {
    std::string shown;
    while (!text.empty()) {
        const char* end = text.data();
        char32_t character = 0;
        const auto length = static_cast<std::ptrdiff_t>(text.size());
        try {
            character = utf8::next(end, text.data() + length);
        } catch (const utf8::exception&) {
            appendEscaped(shown, text.substr(0, 1));
            text.remove_prefix(1);
            continue;
        }
        const std::string_view bytes(text.data(), static_cast<std::size_t>(end - text.data()));
        if (character == '\\')
            shown += "\\\\";
        else if (isControl(character) || isInvisibleFormat(character))
            appendEscaped(shown, bytes);
        else
            shown += bytes;
        text.remove_prefix(bytes.size());
    }
    return shown;
}

}  // namespace corvane::import_command
