#pragma once

#include <sys/types.h>

#include <filesystem>
#include <optional>
#include <string>
#include <system_error>

#include "platform/bytes.h"
#include "platform/system/file_descriptor.h"

namespace corvane {

enum class AtomicFileMode {
    Ordinary,  ///< 0666 less the umask; a replaced regular file's mode is kept
    Private,   ///< 0600 whatever the umask and the replaced file say
};

enum class AtomicFileFolder {
    MayBeLink,  ///< where a user may keep the folder elsewhere
    MustBeOwn,  ///< neither a symbolic link nor another user's
};

enum class AtomicFileTarget {
    MayExist,    ///< a file or a link there is replaced, a link's own target stays untouched
    MustBeFree,  ///< anything there is an error
};

enum class AtomicFileFlush {
    Now,    ///< the file before its renaming, and the folder after it: also a power cut finds it whole
    Later,  ///< left to whoever has more files to flush
};

struct AtomicFileOptions {
    AtomicFileMode mode = AtomicFileMode::Ordinary;
    AtomicFileFolder folder = AtomicFileFolder::MustBeOwn;
    AtomicFileTarget target = AtomicFileTarget::MayExist;
    AtomicFileFlush flush = AtomicFileFlush::Now;
};

/// A file that appears under its name whole or not at all. It is written under a hidden name beside its
/// target; `commit` renames it over the target. Without a successful commit nothing is left behind, and the
/// target is as it was.
class AtomicFile {
  public:
    AtomicFile() = default;
    ~AtomicFile();

    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    /// First and once. The containing folder must exist; a folder at the target is an error.
    std::error_code open(const std::filesystem::path& path, const AtomicFileOptions& options);

    /// Appends. After an error only destruction makes sense.
    std::error_code write(ByteView content);

    /// Last. An error of the final flush of the folder is reported although the new file is in place by then.
    std::error_code commit();

  private:
    std::error_code openFolder(const std::filesystem::path& folder);
    std::error_code examineTarget();
    std::error_code createTemporary();
    std::error_code moveIntoPlace();
    void discardTemporary();

    AtomicFileOptions options_;
    FileDescriptor folder_;
    FileDescriptor file_;
    std::string targetName_;
    std::string temporaryName_;           ///< empty when there is no such file
    std::optional<mode_t> replacedMode_;  ///< absent when no regular file is replaced
};

/// All three steps in one.
std::error_code writeFileAtomically(const std::filesystem::path& path, ByteView content,
                                    const AtomicFileOptions& options);

/// Removes what killed processes have left in the folder: regular files of this user under the hidden names
/// that AtomicFile makes. Only for a process that knows that no other one is writing there; a missing folder
/// holds nothing.
void removeLeftOvers(const std::filesystem::path& folder);

}  // namespace corvane
