#include "platform/system/property_list_file_store.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <utility>

#include "platform/property_list/binary_property_list_writer.h"
#include "platform/property_list/property_list_objects.h"
#include "platform/property_list/property_list_reader.h"
#include "platform/system/atomic_file.h"
#include "platform/system/file_descriptor.h"
#include "platform/system/private_folder.h"
#include "platform/text_format.h"

namespace corvane {
namespace {

constexpr int greatestAsideNumber = 1000;

enum class FileState {
    Missing,
    Read,
    Unreadable,   ///< what is there is not ours to overwrite
    Unavailable,  ///< nothing is known about the file, for want of memory or descriptors
};

struct FileReading {
    FileState state;
    Bytes content;
};

FileState stateAfterFailure(int error) {
    switch (error) {
        case ENOENT:
        case ENOTDIR:
            return FileState::Missing;
        case EMFILE:
        case ENFILE:
        case ENOMEM:
            return FileState::Unavailable;
        default:
            return FileState::Unreadable;
    }
}

FileReading readWholeFile(const std::filesystem::path& path) {
    // A pipe in the file's place must not hold the program up.
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    if (!file.isOpen())
        return {stateAfterFailure(errno), {}};
    struct stat status {};
    if (fstat(file.number(), &status) != 0)
        return {stateAfterFailure(errno), {}};
    if (!S_ISREG(status.st_mode))
        return {FileState::Unreadable, {}};

    constexpr std::size_t blockSize = std::size_t{64} << 10;
    Bytes content;
    while (content.size() <= maximumPropertyListFileSize) {
        const std::size_t size = content.size();
        content.resize(size + blockSize);
        const ssize_t count = ::read(file.number(), content.data() + size, blockSize);
        const int failure = errno;
        content.resize(size + (count > 0 ? static_cast<std::size_t>(count) : 0));
        if (count == 0)
            return {FileState::Read, std::move(content)};
        if (count < 0 && failure != EINTR)
            return {stateAfterFailure(failure), {}};
    }
    return {FileState::Unreadable, {}};
}

std::string asideSuffix(Date now) {
    const auto seconds = std::chrono::floor<std::chrono::seconds>(now);
    const auto day = std::chrono::floor<std::chrono::days>(seconds);
    const std::chrono::year_month_day date(day);
    const std::chrono::hh_mm_ss time(seconds - day);
    return fmt::format(".unreadable-{:04}{:02}{:02}T{:02}{:02}{:02}Z", static_cast<int>(date.year()),
                       static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                       time.hours().count(), time.minutes().count(), time.seconds().count());
}

/// 0, or the number of the error, EEXIST when the new name is taken.
int renameToFreeName(const std::filesystem::path& from, const std::filesystem::path& to) {
    if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0)
        return 0;
    if (errno != EINVAL && errno != ENOSYS)
        return errno;
    // This file system has no such renaming.
    struct stat status {};
    if (lstat(to.c_str(), &status) == 0)
        return EEXIST;
    return std::rename(from.c_str(), to.c_str()) == 0 ? 0 : errno;
}

/// The folder may have been made by hand, or copied, with other people's access.
void closeFolderToOthers(const std::filesystem::path& folder) {
    constexpr mode_t privateMode = 0700;
    constexpr mode_t permissions = 07777;
    struct stat status {};
    if (stat(folder.c_str(), &status) != 0 || status.st_uid != geteuid())
        return;
    if ((status.st_mode & permissions) != privateMode)
        chmod(folder.c_str(), privateMode);
}

}  // namespace

PropertyListFileStore::PropertyListFileStore(std::filesystem::path path, Log& log, const Clock& clock)
    : path_(std::move(path)), log_(log), clock_(clock) {
    readFile();
}

std::optional<PropertyListValue> PropertyListFileStore::objectForKey(std::string_view key) const {
    const auto change = changes_.find(key);
    if (change != changes_.end())
        return change->second;
    const auto found = stored_.find(std::string(key));
    if (found == stored_.end())
        return std::nullopt;
    return found->second;
}

void PropertyListFileStore::setObject(std::string_view key, std::optional<PropertyListValue> value) {
    changes_.insert_or_assign(std::string(key), std::move(value));
}

bool PropertyListFileStore::synchronize() {
    if (!readFile())
        return false;
    if (changes_.empty())
        return true;
    PropertyListDictionary domain = stored_;
    for (const auto& [key, value] : changes_) {
        if (value)
            domain.insert_or_assign(key, *value);
        else
            domain.erase(key);
    }
    if (!writeFile(domain))
        return false;
    stored_ = std::move(domain);
    changes_.clear();
    return true;
}

bool PropertyListFileStore::readFile() {
    const FileReading reading = readWholeFile(path_);
    if (reading.state == FileState::Unavailable)
        return false;
    if (reading.state == FileState::Missing) {
        isBlocked_ = false;
        return true;
    }
    std::optional<PropertyListValue> content =
        reading.state == FileState::Read ? readPropertyList(reading.content) : std::nullopt;
    PropertyListDictionary* const domain = content ? content->get<PropertyListDictionary>() : nullptr;
    if (domain == nullptr)
        return moveAside();
    stored_ = std::move(*domain);
    isBlocked_ = false;
    return true;
}

bool PropertyListFileStore::moveAside() {
    std::filesystem::path aside = path_;
    aside += asideSuffix(clock_.now());
    const std::string firstName = aside.native();
    int failure = renameToFreeName(path_, aside);
    for (int number = 2; failure == EEXIST && number <= greatestAsideNumber; ++number) {
        aside = fmt::format("{}-{}", firstName, number);
        failure = renameToFreeName(path_, aside);
    }
    if (failure == 0) {
        isBlocked_ = false;
        log_.log(formatText("unreadable settings file moved to:%@", {aside.native()}));
        return true;
    }
    if (!isBlocked_)
        log_.log(formatText("unreadable settings file cannot be moved:%@", {path_.native()}));
    isBlocked_ = true;
    return false;
}

bool PropertyListFileStore::writeFile(const PropertyListDictionary& domain) {
    const Bytes content = writeBinaryPropertyList(domain);
    // What could not be read again would be moved aside at the next start.
    const std::error_code error =
        readPropertyList(content) ? writeContent(content) : std::make_error_code(std::errc::file_too_large);
    if (error)
        log_.log(formatText("settings file cannot be written:%@", {error.message()}));
    return !error;
}

std::error_code PropertyListFileStore::writeContent(ByteView content) {
    const std::filesystem::path folder = path_.parent_path();
    if (const std::error_code error = createPrivateFolders(folder))
        return error;
    closeFolderToOthers(folder);
    const AtomicFileOptions options{.mode = AtomicFileMode::Private, .folder = AtomicFileFolder::MayBeLink};
    return writeFileAtomically(path_, content, options);
}

}  // namespace corvane
