#pragma once

#include <filesystem>
#include <optional>
#include <string_view>
#include <system_error>

#include "platform/bytes.h"

namespace corvane {

/// The application group whose folder this program shares with the host application.
inline constexpr std::string_view applicationGroupIdentifier =
    "QX4ZT7M2P9.group.quessartolvinger.brindlecount";

/// Files and folders. An empty error code is success.
class FileManager {
  public:
    virtual ~FileManager() = default;

    /// True for a file or a folder, also for a link whose target exists.
    virtual bool fileExistsAtPath(const std::filesystem::path& path) const = 0;

    /// Makes the folder with all missing ones above it; succeeds when it is there already.
    virtual std::error_code createDirectoryAtPath(const std::filesystem::path& path) = 0;

    /// Writes the file beside its target under a hidden name and renames it over the target: at any moment
    /// every program sees the old file or the new one, whole. It outlives a power cut only from the next
    /// `synchronize` of its folder on. A new file gets the mode 0666 less the umask, a replaced one keeps its
    /// mode. A symbolic link at the target is replaced, not followed; a folder there, or a containing folder
    /// that is a link or belongs to another user, is an error. After an error nothing is left behind.
    virtual std::error_code writeAtomically(const std::filesystem::path& path, ByteView content) = 0;

    /// Returns when all that was written in the folder is on disk. Many files cost little more than one, and
    /// what other programs have written to the same file system may have to be waited for.
    virtual std::error_code synchronize(const std::filesystem::path& folder) = 0;

    /// Copies one file. An existing destination is never overwritten: that is an error.
    virtual std::error_code copyItem(const std::filesystem::path& source,
                                     const std::filesystem::path& destination) = 0;

    /// The folder that the programs of the application group share, made on first look-up; absent when it
    /// cannot be made.
    virtual std::optional<std::filesystem::path> containerForApplicationGroup(
        std::string_view identifier) = 0;
};

}  // namespace corvane
