#include "settings_window/settings_view_controller.h"

#include <utility>

namespace corvane {

SettingsViewController::SettingsViewController(std::unique_ptr<TabView> view, std::string toolbarIdentifier,
                                               std::string toolbarTitle, std::string toolbarIcon)
    : view_(std::move(view)),
      toolbarIdentifier_(std::move(toolbarIdentifier)),
      toolbarTitle_(std::move(toolbarTitle)),
      toolbarIcon_(std::move(toolbarIcon)) {}

}  // namespace corvane
