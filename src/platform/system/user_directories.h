#pragma once

#include <filesystem>
#include <optional>
#include <string_view>

/// Where this user's files belong, after the XDG base directories. Nothing here touches the disk. Any thread,
/// as long as none changes the environment.
namespace corvane {

/// $HOME, or what the user database says where that is unset, empty or relative. Absent when neither tells.
std::optional<std::filesystem::path> homeDirectory();

/// $XDG_CONFIG_HOME, or ".config" in the home directory where that is unset, empty or relative.
std::optional<std::filesystem::path> userConfigurationDirectory();

/// $XDG_DATA_HOME, or ".local/share" in the home directory where that is unset, empty or relative.
std::optional<std::filesystem::path> userDataDirectory();

/// The file that holds the settings, "corvane/settings.plist" in the configuration directory.
std::optional<std::filesystem::path> settingsFilePath();

}  // namespace corvane
