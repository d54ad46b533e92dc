#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace corvane::test {

/// A folder of its own for one test, with a short path (sockets need that), removed with all its content.
class TemporaryFolder {
  public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }

  private:
    std::filesystem::path path_;
};

/// Writes a whole file, with the folders above it. A failure ends the test program.
void writeFile(const std::filesystem::path& path, std::string_view content);

/// The whole content; empty when there is no such file.
std::string readFile(const std::filesystem::path& path);

}  // namespace corvane::test
