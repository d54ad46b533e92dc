#include "platform/system/atomic_file.h"

#include <dirent.h>
#include <fcntl.h>
#include <fmt/format.h>
#include <sys/random.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string_view>

namespace corvane {
namespace {

// The hidden name neither contains the target's name, which may be as long as a name can be, nor ends in the
// ".txt" for which a reader of the folder looks.
constexpr std::string_view temporaryPrefix = ".corvane-";
constexpr std::string_view temporarySuffix = ".partial";
constexpr std::size_t randomDigits = 16;

std::error_code lastError() {
    return {errno, std::generic_category()};
}

std::error_code makeTemporaryName(std::string& name) {
    std::uint64_t random = 0;
    if (getrandom(&random, sizeof random, 0) != static_cast<ssize_t>(sizeof random))
        return lastError();
    name = fmt::format("{}{:016x}{}", temporaryPrefix, random, temporarySuffix);
    return {};
}

bool isTemporaryName(std::string_view name) {
    if (name.size() != temporaryPrefix.size() + randomDigits + temporarySuffix.size())
        return false;
    if (!name.starts_with(temporaryPrefix) || !name.ends_with(temporarySuffix))
        return false;
    const std::string_view digits = name.substr(temporaryPrefix.size(), randomDigits);
    return digits.find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

std::error_code synchronize(int descriptor) {
    while (fsync(descriptor) != 0) {
        if (errno != EINTR)
            return lastError();
    }
    return {};
}

/// Renames within the folder unless the new name is taken.
std::error_code renameToFreeName(int folder, const char* from, const char* to) {
    if (renameat2(folder, from, folder, to, RENAME_NOREPLACE) == 0)
        return {};
    if (errno != EINVAL && errno != ENOSYS)
        return lastError();
    // This file system has no such renaming.
    if (linkat(folder, from, folder, to, 0) != 0)
        return lastError();
    unlinkat(folder, from, 0);
    return {};
}

}  // namespace

AtomicFile::~AtomicFile() {
    discardTemporary();
}

std::error_code AtomicFile::open(const std::filesystem::path& path, const AtomicFileOptions& options) {
    options_ = options;
    targetName_ = path.filename().string();
    const bool isName = !targetName_.empty() && targetName_ != "." && targetName_ != "..";
    if (!isName || path.native().find('\0') != std::string::npos)
        return std::make_error_code(std::errc::invalid_argument);
    if (const std::error_code error = openFolder(path.parent_path()))
        return error;
    if (const std::error_code error = examineTarget())
        return error;
    return createTemporary();
}

std::error_code AtomicFile::openFolder(const std::filesystem::path& folder) {
    const bool mustBeOwn = options_.folder == AtomicFileFolder::MustBeOwn;
    const int flags = O_RDONLY | O_DIRECTORY | O_CLOEXEC | (mustBeOwn ? O_NOFOLLOW : 0);
    folder_ = FileDescriptor(::open(folder.empty() ? "." : folder.c_str(), flags));
    if (!folder_.isOpen())
        return lastError();
    if (!mustBeOwn)
        return {};
    struct stat status {};
    if (fstat(folder_.number(), &status) != 0)
        return lastError();
    if (status.st_uid != geteuid())
        return std::make_error_code(std::errc::operation_not_permitted);
    return {};
}

std::error_code AtomicFile::examineTarget() {
    struct stat status {};
    if (fstatat(folder_.number(), targetName_.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0)
        return errno == ENOENT ? std::error_code() : lastError();
    if (options_.target == AtomicFileTarget::MustBeFree)
        return std::make_error_code(std::errc::file_exists);
    if (S_ISDIR(status.st_mode))
        return std::make_error_code(std::errc::is_a_directory);
    constexpr mode_t permissions = 0777;
    if (S_ISREG(status.st_mode))
        replacedMode_ = status.st_mode & permissions;
    return {};
}

std::error_code AtomicFile::createTemporary() {
    constexpr mode_t privateMode = 0600;
    constexpr mode_t newFileMode = 0666;
    const bool isPrivate = options_.mode == AtomicFileMode::Private;
    const bool takesUmask = !isPrivate && !replacedMode_;

    std::string name;
    do {
        if (const std::error_code error = makeTemporaryName(name))
            return error;
        file_ = FileDescriptor(openat(folder_.number(), name.c_str(),
                                      O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
                                      takesUmask ? newFileMode : privateMode));
    } while (!file_.isOpen() && (errno == EEXIST || errno == EINTR));
    if (!file_.isOpen())
        return lastError();
    temporaryName_ = name;
    if (!takesUmask && fchmod(file_.number(), isPrivate ? privateMode : *replacedMode_) != 0)
        return lastError();
    return {};
}

std::error_code AtomicFile::write(ByteView content) {
    while (!content.empty()) {
        const ssize_t written = ::write(file_.number(), content.data(), content.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            return lastError();
        content = content.subspan(static_cast<std::size_t>(written));
    }
    return {};
}

std::error_code AtomicFile::commit() {
    const bool isFlushedNow = options_.flush == AtomicFileFlush::Now;
    if (isFlushedNow) {
        if (const std::error_code error = synchronize(file_.number()))
            return error;
    }
    if (const std::error_code error = moveIntoPlace())
        return error;
    temporaryName_.clear();
    return isFlushedNow ? synchronize(folder_.number()) : std::error_code();
}

std::error_code AtomicFile::moveIntoPlace() {
    const int folder = folder_.number();
    if (options_.target == AtomicFileTarget::MustBeFree)
        return renameToFreeName(folder, temporaryName_.c_str(), targetName_.c_str());
    if (renameat(folder, temporaryName_.c_str(), folder, targetName_.c_str()) != 0)
        return lastError();
    return {};
}

void AtomicFile::discardTemporary() {
    if (!temporaryName_.empty())
        unlinkat(folder_.number(), temporaryName_.c_str(), 0);
    temporaryName_.clear();
}

std::error_code writeFileAtomically(const std::filesystem::path& path, ByteView content,
                                    const AtomicFileOptions& options) {
    AtomicFile file;
    if (const std::error_code error = file.open(path, options))
        return error;
    if (const std::error_code error = file.write(content))
        return error;
    return file.commit();
}

void removeLeftOvers(const std::filesystem::path& folder) {
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(opendir(folder.c_str()), closedir);
    if (!entries)
        return;
    const int descriptor = dirfd(entries.get());
    while (const dirent* entry = readdir(entries.get())) {
        const char* const name = entry->d_name;
        if (!isTemporaryName(name))
            continue;
        struct stat status {};
        if (fstatat(descriptor, name, &status, AT_SYMLINK_NOFOLLOW) != 0)
            continue;
        if (S_ISREG(status.st_mode) && status.st_uid == geteuid())
            unlinkat(descriptor, name, 0);
    }
}

}  // namespace corvane
