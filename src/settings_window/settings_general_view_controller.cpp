#include "settings_window/settings_general_view_controller.h"

#include <utility>

namespace corvane {

SettingsGeneralViewController::SettingsGeneralViewController(std::unique_ptr<TabView> view,
                                                             const LocalizedStrings& strings)
    : SettingsViewController(std::move(view), "settingsGeneralIdentifier",
                             strings.localizedString("General", "Settings Toolbar Item"),
                             "NSImageNamePreferencesGeneral") {}

}  // namespace corvane
