#pragma once

#include <filesystem>
#include <system_error>

namespace corvane {

/// Makes the folder with all missing ones above it, each with the mode 0700 whatever the umask says. One that
/// is there already, also behind a symbolic link, is left as it is.
std::error_code createPrivateFolders(const std::filesystem::path& path);

}  // namespace corvane
