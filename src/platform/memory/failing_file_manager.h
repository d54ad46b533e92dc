#pragma once

#include <cstddef>

#include "platform/file_manager.h"

namespace corvane {

/// Passes everything on to another file manager, except that one chosen changing operation fails. A container
/// look-up counts as changing, an existence test does not. Single-threaded.
class FailingFileManager final : public FileManager {
  public:
    /// The operation with the number `failingOperation`, counted from 0, fails with `error`; a look-up finds
    /// nothing then.
    FailingFileManager(FileManager& files, std::size_t failingOperation,
                       std::error_code error = std::make_error_code(std::errc::no_space_on_device));

    bool fileExistsAtPath(const std::filesystem::path& path) const override;
    std::error_code createDirectoryAtPath(const std::filesystem::path& path) override;
    std::error_code writeAtomically(const std::filesystem::path& path, ByteView content) override;
    std::error_code synchronize(const std::filesystem::path& folder) override;
    std::error_code copyItem(const std::filesystem::path& source,
                             const std::filesystem::path& destination) override;
    std::optional<std::filesystem::path> containerForApplicationGroup(std::string_view identifier) override;

    /// Changing operations so far, the failed one included.
    std::size_t operationCount() const { return operationCount_; }

  private:
    bool failsNow() { return operationCount_++ == failingOperation_; }

    FileManager& files_;
    std::size_t failingOperation_;
    std::error_code error_;
    std::size_t operationCount_ = 0;
};

}  // namespace corvane
