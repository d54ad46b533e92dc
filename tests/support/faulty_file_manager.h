#pragma once

#include "platform/memory/in_memory_file_manager.h"

namespace corvane::test {

/// Files in memory whose writes fail when a test wants it.
class FaultyFileManager final : public FileManager {
  public:
    void failWritesWith(std::error_code error) { writeError_ = error; }
    void refuseContainers() { files_.refuseContainers(); }
    std::optional<Bytes> contentsAtPath(const std::filesystem::path& path) const {
        return files_.contentsAtPath(path);
    }

    bool fileExistsAtPath(const std::filesystem::path& path) const override {
        return files_.fileExistsAtPath(path);
    }
    std::error_code createDirectoryAtPath(const std::filesystem::path& path) override {
        return files_.createDirectoryAtPath(path);
    }
    std::error_code writeAtomically(const std::filesystem::path& path, ByteView content) override {
        return writeError_ ? writeError_ : files_.writeAtomically(path, content);
    }
    std::error_code copyItem(const std::filesystem::path& source,
                             const std::filesystem::path& destination) override {
        return files_.copyItem(source, destination);
    }
    std::optional<std::filesystem::path> containerForApplicationGroup(std::string_view identifier) override {
        return files_.containerForApplicationGroup(identifier);
    }

  private:
    InMemoryFileManager files_;
    std::error_code writeError_;
};

}  // namespace corvane::test
