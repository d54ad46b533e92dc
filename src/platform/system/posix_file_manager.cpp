#include "platform/system/posix_file_manager.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <utility>

#include "platform/system/atomic_file.h"
#include "platform/system/file_descriptor.h"
#include "platform/system/private_folder.h"

namespace corvane {
namespace {

std::error_code lastError() {
    return {errno, std::generic_category()};
}

std::error_code openRegularFile(const std::filesystem::path& path, FileDescriptor& file) {
    // Not blocking, so that a pipe under that name cannot hold the program up.
    file = FileDescriptor(open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!file.isOpen())
        return lastError();
    struct stat status {};
    if (fstat(file.number(), &status) != 0)
        return lastError();
    if (S_ISDIR(status.st_mode))
        return std::make_error_code(std::errc::is_a_directory);
    if (!S_ISREG(status.st_mode))
        return std::make_error_code(std::errc::invalid_argument);
    return {};
}

std::error_code copyContent(const FileDescriptor& source, AtomicFile& destination) {
    std::array<std::uint8_t, std::size_t{64} * 1024> buffer{};
    while (true) {
        const ssize_t count = read(source.number(), buffer.data(), buffer.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return lastError();
        if (count == 0)
            return {};
        if (const auto error = destination.write(ByteView(buffer.data(), static_cast<std::size_t>(count))))
            return error;
    }
}

bool isNameOfOneFolder(std::string_view identifier) {
    return !identifier.empty() && identifier != "." && identifier != ".." &&
           identifier.find_first_of(std::string_view("/\0", 2)) == std::string_view::npos;
}

}  // namespace

PosixFileManager::PosixFileManager(std::optional<std::filesystem::path> containersFolder)
    : containersFolder_(std::move(containersFolder)) {}

bool PosixFileManager::fileExistsAtPath(const std::filesystem::path& path) const {
    struct stat status {};
    return stat(path.c_str(), &status) == 0;
}

std::error_code PosixFileManager::createDirectoryAtPath(const std::filesystem::path& path) {
    std::error_code error;
    std::filesystem::create_directories(path, error);
    return error;
}

std::error_code PosixFileManager::writeAtomically(const std::filesystem::path& path, ByteView content) {
    return writeFileAtomically(path, content, {.flush = AtomicFileFlush::Later});
}

std::error_code PosixFileManager::synchronize(const std::filesystem::path& folder) {
    const FileDescriptor opened(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!opened.isOpen() || syncfs(opened.number()) != 0)
        return lastError();
    return {};
}

std::error_code PosixFileManager::copyItem(const std::filesystem::path& source,
                                           const std::filesystem::path& destination) {
    FileDescriptor from;
    if (const std::error_code error = openRegularFile(source, from))
        return error;
    AtomicFile to;
    if (const std::error_code error = to.open(destination, {.target = AtomicFileTarget::MustBeFree}))
        return error;
    if (const std::error_code error = copyContent(from, to))
        return error;
    return to.commit();
}

std::optional<std::filesystem::path> PosixFileManager::containerForApplicationGroup(
    std::string_view identifier) {
    if (!containersFolder_ || !isNameOfOneFolder(identifier))
        return std::nullopt;
    const std::filesystem::path container = *containersFolder_ / identifier;
    if (createPrivateFolders(container))
        return std::nullopt;
    struct stat status {};
    if (stat(container.c_str(), &status) != 0 || status.st_uid != geteuid())
        return std::nullopt;
    return container;
}

}  // namespace corvane
