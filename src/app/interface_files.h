#pragma once

#include <memory>
#include <string_view>

#include "app/report_update_view.h"
#include "settings_window/accounts_view.h"
#include "settings_window/preferences_view.h"
#include "settings_window/settings_window_view.h"

namespace corvane {

class ReportUpdateViewController;

/// Makes the toolkit's half of windows and tabs, each by the name of its interface file. A missing one is
/// null. The views call their events object, which must outlive them. Main thread only.
class InterfaceFiles {
  public:
    virtual ~InterfaceFiles() = default;

    /// The General tab's view ("SettingsGeneralViewController").
    virtual std::unique_ptr<TabView> loadGeneralView() = 0;
    /// The Accounts tab's view ("SettingsAccountsViewController").
    virtual std::unique_ptr<AccountsView> loadAccountsView() = 0;
    /// The Advanced tab's view ("SettingsPreferencesViewController").
    virtual std::unique_ptr<PreferencesView> loadPreferencesView() = 0;
    /// The settings window ("SettingsWindowController").
    virtual std::unique_ptr<SettingsWindowView> loadSettingsWindow(SettingsWindowEvents& events) = 0;
    /// The import window's content ("ReportUpdateViewController").
    virtual std::unique_ptr<ReportUpdateView> loadReportUpdateView() = 0;

    /// A window with the controller's view as its content. It keeps the controller alive, and tells it when
    /// its view comes on screen.
    virtual std::shared_ptr<SheetWindow> makeSheetWindow(
        std::shared_ptr<ReportUpdateViewController> controller) = 0;
};

}  // namespace corvane
