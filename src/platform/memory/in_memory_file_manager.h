#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "platform/file_manager.h"

namespace corvane {

/// A tree of files and folders that lives as long as the object and starts with the folder "/" alone;
/// containers are made in "/containers". Paths are absolute. There are no links and no permissions; names are
/// at most 255 bytes. Single-threaded.
class InMemoryFileManager final : public FileManager {
  public:
    bool fileExistsAtPath(const std::filesystem::path& path) const override;
    std::error_code createDirectoryAtPath(const std::filesystem::path& path) override;
    std::error_code writeAtomically(const std::filesystem::path& path, ByteView content) override;
    std::error_code synchronize(const std::filesystem::path& folder) override;
    std::error_code copyItem(const std::filesystem::path& source,
                             const std::filesystem::path& destination) override;
    std::optional<std::filesystem::path> containerForApplicationGroup(std::string_view identifier) override;

    /// From now on there are no containers, as where none can be made.
    void refuseContainers() { hasContainers_ = false; }

    /// From now on every write that could be made fails with `error`, as on a full disk; an empty error ends
    /// that.
    void failWritesWith(std::error_code error) { writeError_ = error; }

    /// How many files were written since the last `synchronize`.
    int unflushedCount() const { return unflushedCount_; }

    /// Absent when there is no such file.
    std::optional<Bytes> contentsAtPath(const std::filesystem::path& path) const;

    /// The names of the files and folders in a folder, sorted; none when there is no such folder.
    std::vector<std::string> contentsOfDirectory(const std::filesystem::path& path) const;

  private:
    std::error_code checkNewFile(const std::filesystem::path& path) const;

    std::map<std::filesystem::path, Bytes> files_;
    std::set<std::filesystem::path> folders_{"/"};
    bool hasContainers_ = true;
    std::error_code writeError_;
    int unflushedCount_ = 0;
};

}  // namespace corvane
