#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>

namespace corvane::import_command {

/// The texts of the command. Whole lines end with a line end.

std::string helpText();
std::string versionText();

/// For standard error: the problem, and where the usage is told.
std::string usageProblem(std::string_view problem);

/// For standard error.
std::string problemLine(std::string_view problem);
std::string timeoutProblem(std::chrono::seconds timeout);

/// While the import runs, on a terminal: no line end.
std::string progressText(std::size_t reports);
std::string summaryLine(std::size_t reports);

/// The object of the notification that asks for an import.
std::string optionsText(bool isLite);

/// The text as a terminal can show it: control characters and bytes that are no UTF-8 as \xHH, and a
/// backslash doubled.
std::string forTerminal(std::string_view text);

}  // namespace corvane::import_command
