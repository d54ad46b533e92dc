#include "import_command/report_folder.h"

#include <sys/stat.h>

#include <system_error>

#include "platform/file_manager.h"
#include "platform/system/user_directories.h"

namespace corvane::import_command {
namespace {

std::optional<FileVersion> versionOf(const std::filesystem::path& path) {
    struct stat status {};
    if (lstat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode))
        return std::nullopt;
    return FileVersion{.device = status.st_dev,
                       .inode = status.st_ino,
                       .modifiedSeconds = status.st_mtim.tv_sec,
                       .modifiedNanoseconds = status.st_mtim.tv_nsec,
                       .size = status.st_size};
}

}  // namespace

std::optional<std::filesystem::path> reportFolder() {
    const auto data = userDataDirectory();
    if (!data)
        return std::nullopt;
    return *data / applicationGroupIdentifier / "ToImport";
}

FolderState stateOf(const std::filesystem::path& folder) {
    FolderState state;
    std::error_code error;
    std::filesystem::directory_iterator entry(folder, error);
    const std::filesystem::directory_iterator end;
    while (!error && entry != end) {
        const std::string name = entry->path().filename().native();
        if (!name.starts_with('.')) {
            if (const auto version = versionOf(entry->path()))
                state.emplace(name, *version);
        }
        entry.increment(error);
    }
    return state;
}

std::vector<std::string> changedFiles(const FolderState& before, const FolderState& after) {
    std::vector<std::string> names;
    for (const auto& [name, version] : after) {
        const auto earlier = before.find(name);
        if (earlier == before.end() || earlier->second != version)
            names.push_back(name);
    }
    return names;
}

}  // namespace corvane::import_command
