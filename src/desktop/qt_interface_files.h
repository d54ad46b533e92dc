#pragma once

#include <QPointer>

#include "app/interface_files.h"
#include "desktop/general_tab.h"
#include "desktop/settings_window.h"
#include "platform/localized_strings.h"

namespace corvane {

/// Makes the windows and tabs as Qt widgets.
class QtInterfaceFiles final : public InterfaceFiles {
  public:
    /// The strings must outlive what is made here.
    QtInterfaceFiles(const LocalizedStrings& strings, ProgramFacts facts, MenuCommands commands);

    std::unique_ptr<TabView> loadGeneralView() override;
    std::unique_ptr<AccountsView> loadAccountsView() override;
    std::unique_ptr<PreferencesView> loadPreferencesView() override;
    std::unique_ptr<SettingsWindowView> loadSettingsWindow(SettingsWindowEvents& events) override;
    std::unique_ptr<ReportUpdateView> loadReportUpdateView() override;

    /// The controller's view must come from here.
    std::shared_ptr<SheetWindow> makeSheetWindow(
        std::shared_ptr<ReportUpdateViewController> controller) override;

    /// The settings window made last; null when there is none.
    QWidget* settingsWindow() const { return settingsWindow_.data(); }

  private:
    const LocalizedStrings& strings_;
    const ProgramFacts facts_;
    const MenuCommands commands_;
    QPointer<QWidget> settingsWindow_;
};

}  // namespace corvane
