#pragma once

#include <string>

namespace corvane {

/// The user's desktop. Main thread only.
class Workspace {
  public:
    virtual ~Workspace() = default;

    /// Hands an absolute URL to the default application for it, never through a shell. Whether it opens is
    /// not told.
    virtual void openURL(const std::string& url) = 0;
};

}  // namespace corvane
