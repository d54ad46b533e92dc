#pragma once

#include <string>
#include <vector>

#include "platform/workspace.h"

namespace corvane {

/// Opens nothing and keeps what it was asked to open.
class RecordingWorkspace final : public Workspace {
  public:
    void openURL(const std::string& url) override { openedURLs_.push_back(url); }
    const std::vector<std::string>& openedURLs() const { return openedURLs_; }

  private:
    std::vector<std::string> openedURLs_;
};

}  // namespace corvane
