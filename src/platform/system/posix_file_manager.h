#pragma once

#include "platform/file_manager.h"

namespace corvane {

/// The machine's files. Any thread.
class PosixFileManager final : public FileManager {
  public:
    /// Containers of application groups lie in the given folder, usually `userDataDirectory()`; absent: there
    /// are none.
    explicit PosixFileManager(std::optional<std::filesystem::path> containersFolder);

    bool fileExistsAtPath(const std::filesystem::path& path) const override;
    std::error_code createDirectoryAtPath(const std::filesystem::path& path) override;
    std::error_code writeAtomically(const std::filesystem::path& path, ByteView content) override;
    std::error_code synchronize(const std::filesystem::path& folder) override;
    std::error_code copyItem(const std::filesystem::path& source,
                             const std::filesystem::path& destination) override;

    /// Made with the mode 0700. Absent also when the folder belongs to another user.
    std::optional<std::filesystem::path> containerForApplicationGroup(std::string_view identifier) override;

  private:
    std::optional<std::filesystem::path> containersFolder_;
};

}  // namespace corvane
