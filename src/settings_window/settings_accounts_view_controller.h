#pragma once

#include "platform/localized_strings.h"
#include "settings_window/settings_view_controller.h"

namespace corvane {

/// The Accounts tab.
class SettingsAccountsViewController final : public SettingsViewController {
  public:
    SettingsAccountsViewController(std::unique_ptr<TabView> view, const LocalizedStrings& strings);
};

}  // namespace corvane
