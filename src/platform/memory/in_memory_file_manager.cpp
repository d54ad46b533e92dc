#include "platform/memory/in_memory_file_manager.h"

namespace corvane {
namespace {

std::filesystem::path normalized(const std::filesystem::path& path) {
    std::filesystem::path normal = path.lexically_normal();
    return normal.has_filename() || normal == normal.root_path() ? normal : normal.parent_path();
}

}  // namespace

bool InMemoryFileManager::fileExistsAtPath(const std::filesystem::path& path) const {
    const std::filesystem::path wanted = normalized(path);
    return files_.contains(wanted) || folders_.contains(wanted);
}

std::error_code InMemoryFileManager::createDirectoryAtPath(const std::filesystem::path& path) {
    std::filesystem::path made;
    for (const std::filesystem::path& part : normalized(path)) {
        made /= part;
        if (files_.contains(made))
            return std::make_error_code(std::errc::not_a_directory);
        folders_.insert(made);
    }
    return {};
}

std::error_code InMemoryFileManager::checkNewFile(const std::filesystem::path& path) const {
    constexpr std::size_t maximumNameLength = 255;
    const std::filesystem::path name = path.filename();
    if (name.empty() || name == "." || name == ".." || path.native().find('\0') != std::string::npos)
        return std::make_error_code(std::errc::invalid_argument);
    const std::filesystem::path folder = normalized(path).parent_path();
    if (files_.contains(folder))
        return std::make_error_code(std::errc::not_a_directory);
    if (!folders_.contains(folder))
        return std::make_error_code(std::errc::no_such_file_or_directory);
    if (name.native().size() > maximumNameLength)
        return std::make_error_code(std::errc::filename_too_long);
    return {};
}

std::error_code InMemoryFileManager::writeAtomically(const std::filesystem::path& path, ByteView content) {
    if (const std::error_code error = checkNewFile(path))
        return error;
    const std::filesystem::path target = normalized(path);
    if (folders_.contains(target))
        return std::make_error_code(std::errc::is_a_directory);
    if (writeError_)
        return writeError_;
    files_[target] = Bytes(content.begin(), content.end());
    ++unflushedCount_;
    return {};
}

std::error_code InMemoryFileManager::synchronize(const std::filesystem::path& folder) {
    if (!folders_.contains(normalized(folder)))
        return std::make_error_code(std::errc::no_such_file_or_directory);
    unflushedCount_ = 0;
    return {};
}

std::error_code InMemoryFileManager::copyItem(const std::filesystem::path& source,
                                              const std::filesystem::path& destination) {
    if (folders_.contains(normalized(source)))
        return std::make_error_code(std::errc::is_a_directory);
    const auto found = files_.find(normalized(source));
    if (found == files_.end())
        return std::make_error_code(std::errc::no_such_file_or_directory);
    if (const std::error_code error = checkNewFile(destination))
        return error;
    if (fileExistsAtPath(destination))
        return std::make_error_code(std::errc::file_exists);
    files_[normalized(destination)] = found->second;
    return {};
}

std::optional<std::filesystem::path> InMemoryFileManager::containerForApplicationGroup(
    std::string_view identifier) {
    const bool isName = !identifier.empty() && identifier != "." && identifier != ".." &&
                        identifier.find_first_of(std::string_view("/\0", 2)) == std::string_view::npos;
    if (!hasContainers_ || !isName)
        return std::nullopt;
    std::filesystem::path container = std::filesystem::path("/containers") / identifier;
    if (createDirectoryAtPath(container))
        return std::nullopt;
    return container;
}

std::optional<Bytes> InMemoryFileManager::contentsAtPath(const std::filesystem::path& path) const {
    const auto found = files_.find(normalized(path));
    if (found == files_.end())
        return std::nullopt;
    return found->second;
}

std::vector<std::string> InMemoryFileManager::contentsOfDirectory(const std::filesystem::path& path) const {
    const std::filesystem::path folder = normalized(path);
    std::set<std::string> names;
    for (const auto& [file, content] : files_) {
        if (file.parent_path() == folder)
            names.insert(file.filename().string());
    }
    for (const std::filesystem::path& candidate : folders_) {
        if (candidate != folder && candidate.parent_path() == folder)
            names.insert(candidate.filename().string());
    }
    return {names.begin(), names.end()};
}

}  // namespace corvane
