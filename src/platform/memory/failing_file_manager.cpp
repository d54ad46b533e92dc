#include "platform/memory/failing_file_manager.h"

namespace corvane {

FailingFileManager::FailingFileManager(FileManager& files, std::size_t failingOperation,
                                       std::error_code error)
    : files_(files), failingOperation_(failingOperation), error_(error) {}

bool FailingFileManager::fileExistsAtPath(const std::filesystem::path& path) const {
    return files_.fileExistsAtPath(path);
}

std::error_code FailingFileManager::createDirectoryAtPath(const std::filesystem::path& path) {
    return failsNow() ? error_ : files_.createDirectoryAtPath(path);
}

std::error_code FailingFileManager::writeAtomically(const std::filesystem::path& path, ByteView content) {
    return failsNow() ? error_ : files_.writeAtomically(path, content);
}

std::error_code FailingFileManager::synchronize(const std::filesystem::path& folder) {
    return failsNow() ? error_ : files_.synchronize(folder);
}

std::error_code FailingFileManager::copyItem(const std::filesystem::path& source,
                                             const std::filesystem::path& destination) {
    return failsNow() ? error_ : files_.copyItem(source, destination);
}

std::optional<std::filesystem::path> FailingFileManager::containerForApplicationGroup(
    std::string_view identifier) {
    if (failsNow())
        return std::nullopt;
    return files_.containerForApplicationGroup(identifier);
}

}  // namespace corvane
