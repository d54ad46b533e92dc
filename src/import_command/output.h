#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace corvane::import_command {

/// What goes to standard output. On a terminal the progress has a line of its own, wiped away before anything
/// else is written, and names are shown safely; elsewhere there is no progress and names are written as they
/// are.
class Output {
  public:
    Output();

    bool isTerminal() const { return isTerminal_; }

    void showProgress(std::size_t reports);
    void clearProgress();

    /// The path of each file, then the summary.
    void writeReports(const std::filesystem::path& folder, const std::vector<std::string>& names);
    void write(std::string_view text);

    /// False when not everything could be written.
    bool flush();

  private:
    bool isTerminal_;
    bool showsProgress_ = false;
};

}  // namespace corvane::import_command
