#include "settings_window/settings_preferences_view_controller.h"

#include <utility>

namespace corvane {

SettingsPreferencesViewController::SettingsPreferencesViewController(std::unique_ptr<TabView> view,
                                                                     const LocalizedStrings& strings)
    : SettingsViewController(std::move(view), "settingsAdvancedIdentifier",
                             strings.localizedString("Advanced", "Settings Toolbar Item"),
                             "NSImageNameAdvanced") {}

}  // namespace corvane
