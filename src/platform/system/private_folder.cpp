#include "platform/system/private_folder.h"

#include <sys/stat.h>

#include <cerrno>

namespace corvane {
namespace {

constexpr mode_t privateMode = 0700;

std::error_code createPrivateFolder(const std::filesystem::path& path) {
    if (mkdir(path.c_str(), privateMode) == 0) {
        if (chmod(path.c_str(), privateMode) == 0)
            return {};
        return {errno, std::generic_category()};
    }
    const int failure = errno;
    struct stat status {};
    // Some other process may have made it at the same time.
    if (stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode))
        return {};
    return {failure, std::generic_category()};
}

}  // namespace

std::error_code createPrivateFolders(const std::filesystem::path& path) {
    std::filesystem::path made;
    for (const std::filesystem::path& part : path) {
        made /= part;
        if (const std::error_code error = createPrivateFolder(made))
            return error;
    }
    return {};
}

}  // namespace corvane
