#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace corvane {

/// A URL of which the program only asks whether it names a file (RFC 8089), and which.
class ResourceUrl {
  public:
    explicit ResourceUrl(std::string text) : text_(std::move(text)) {}

    /// The URL of the file at the absolute path.
    static ResourceUrl ofFile(const std::filesystem::path& path);

    const std::string& text() const { return text_; }
    bool isFileUrl() const;
    /// The path of a file URL, its escapes undone; absent for other URLs and for one without a path.
    std::optional<std::filesystem::path> filePath() const;

    bool operator==(const ResourceUrl&) const = default;

  private:
    std::string text_;
};

}  // namespace corvane
