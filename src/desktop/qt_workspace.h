#pragma once

#include "platform/workspace.h"

namespace corvane {

/// Opens URLs with the desktop's default applications.
class QtWorkspace final : public Workspace {
  public:
    void openURL(const std::string& url) override;
};

}  // namespace corvane
