#include "settings_window/settings_accounts_view_controller.h"

#include <utility>

namespace corvane {

SettingsAccountsViewController::SettingsAccountsViewController(std::unique_ptr<TabView> view,
                                                               const LocalizedStrings& strings)
    : SettingsViewController(std::move(view), "settingsAccountsIdentifier",
                             strings.localizedString("Accounts", "Settings Toolbar Item"),
                             "NSImageNameUserAccounts") {}

}  // namespace corvane
