#pragma once

#include "platform/localized_strings.h"
#include "settings_window/settings_view_controller.h"

namespace corvane {

/// The Advanced tab.
class SettingsPreferencesViewController final : public SettingsViewController {
  public:
    SettingsPreferencesViewController(std::unique_ptr<TabView> view, const LocalizedStrings& strings);
};

}  // namespace corvane
