#pragma once

#include "platform/localized_strings.h"
#include "settings_window/settings_view_controller.h"

namespace corvane {

/// The General tab: says what the program is, and has no controls.
class SettingsGeneralViewController final : public SettingsViewController {
  public:
    SettingsGeneralViewController(std::unique_ptr<TabView> view, const LocalizedStrings& strings);
};

}  // namespace corvane
