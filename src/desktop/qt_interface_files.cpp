#include "desktop/qt_interface_files.h"

#include <utility>

#include "desktop/accounts_tab.h"
#include "desktop/import_sheet.h"
#include "desktop/import_view.h"
#include "desktop/preferences_tab.h"
#include "desktop/qt_tab_view.h"
#include "desktop/start_by_bus.h"

namespace corvane {

QtInterfaceFiles::QtInterfaceFiles(const LocalizedStrings& strings, ProgramFacts facts, MenuCommands commands)
    : strings_(strings), facts_(std::move(facts)), commands_(std::move(commands)) {}

std::unique_ptr<TabView> QtInterfaceFiles::loadGeneralView() {
    return std::make_unique<QtPlainTabView>(new GeneralTab(facts_, strings_));
}

std::unique_ptr<AccountsView> QtInterfaceFiles::loadAccountsView() {
    return std::make_unique<AccountsTab>(strings_);
}

std::unique_ptr<PreferencesView> QtInterfaceFiles::loadPreferencesView() {
    return std::make_unique<PreferencesTab>(strings_);
}

std::unique_ptr<SettingsWindowView> QtInterfaceFiles::loadSettingsWindow(SettingsWindowEvents& events) {
    auto window = std::make_unique<SettingsWindow>(events, commands_, strings_);
    // For an import the user's place is elsewhere. Whoever wants to see the window calls Activate next.
    window->setAttribute(Qt::WA_ShowWithoutActivating, isStartedByBus());
    settingsWindow_ = window.get();
    return window;
}

std::unique_ptr<ReportUpdateView> QtInterfaceFiles::loadReportUpdateView() {
    return std::make_unique<ImportView>(strings_);
}

std::shared_ptr<SheetWindow> QtInterfaceFiles::makeSheetWindow(
    std::shared_ptr<ReportUpdateViewController> controller) {
    QWidget* content = static_cast<const ImportView&>(*controller->view()).widget();
    return std::make_shared<ImportSheet>(std::move(controller), content);
}

}  // namespace corvane
