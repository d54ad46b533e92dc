#include "platform/system/user_directories.h"

#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <vector>

namespace corvane {
namespace {

std::optional<std::filesystem::path> absolutePathFromEnvironment(const char* variable) {
    const char* const value = std::getenv(variable);
    if (value == nullptr || *value != '/')
        return std::nullopt;
    return std::filesystem::path(value);
}

std::optional<std::filesystem::path> homeFromUserDatabase() {
    constexpr std::size_t firstSize = 1024;
    constexpr std::size_t lastSize = firstSize * 1024;
    for (std::size_t size = firstSize; size <= lastSize; size *= 4) {
        std::vector<char> texts(size);
        passwd entry{};
        passwd* found = nullptr;
        const int error = getpwuid_r(geteuid(), &entry, texts.data(), texts.size(), &found);
        if (error == ERANGE)
            continue;
        if (found == nullptr || found->pw_dir == nullptr || *found->pw_dir != '/')
            return std::nullopt;
        return std::filesystem::path(found->pw_dir);
    }
    return std::nullopt;
}

std::optional<std::filesystem::path> directory(const char* variable, std::string_view inHome) {
    if (auto path = absolutePathFromEnvironment(variable))
        return path;
    const auto home = homeDirectory();
    if (!home)
        return std::nullopt;
    return *home / inHome;
}

}  // namespace

std::optional<std::filesystem::path> homeDirectory() {
    if (auto path = absolutePathFromEnvironment("HOME"))
        return path;
    return homeFromUserDatabase();
}

std::optional<std::filesystem::path> userConfigurationDirectory() {
    return directory("XDG_CONFIG_HOME", ".config");
}

std::optional<std::filesystem::path> userDataDirectory() {
    return directory("XDG_DATA_HOME", ".local/share");
}

std::optional<std::filesystem::path> settingsFilePath() {
    const auto configuration = userConfigurationDirectory();
    if (!configuration)
        return std::nullopt;
    return *configuration / "corvane" / "settings.plist";
}

}  // namespace corvane
