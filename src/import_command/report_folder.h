#pragma once

#include <sys/types.h>

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace corvane::import_command {

/// Where the program leaves the reports; the folder need not exist. Absent when this user has no home.
std::optional<std::filesystem::path> reportFolder();

/// What tells one version of a file from another: a rewritten file is another inode, or has another time.
struct FileVersion {
    dev_t device = 0;
    ino_t inode = 0;
    std::int64_t modifiedSeconds = 0;
    std::int64_t modifiedNanoseconds = 0;
    off_t size = 0;

    bool operator==(const FileVersion&) const = default;
};

/// The visible regular files of a folder, by name.
using FolderState = std::map<std::string, FileVersion>;

/// A folder that is missing or cannot be read counts as empty. Hidden files, folders, links and other things
/// that are no regular files are left out.
FolderState stateOf(const std::filesystem::path& folder);

/// The names of the files that are new in `after`, or another version there, in byte order.
std::vector<std::string> changedFiles(const FolderState& before, const FolderState& after);

}  // namespace corvane::import_command
