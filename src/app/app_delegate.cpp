#include "app/app_delegate.h"

#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "platform/fatal_error.h"
#include "platform/text_format.h"
#include "settings_window/settings_accounts_view_controller.h"
#include "settings_window/settings_general_view_controller.h"
#include "settings_window/settings_preferences_view_controller.h"

namespace corvane {

namespace {

constexpr std::size_t longestLoggedObject = 1000;

std::string describe(const DistributedNotification& notification) {
    std::string object = "(none)";
    if (const auto* text = std::get_if<std::string>(&notification.object))
        object = text->size() <= longestLoggedObject ? *text : text->substr(0, longestLoggedObject) + "...";
    else if (const auto* foreign = std::get_if<ForeignObject>(&notification.object))
        object = foreign->description;
    return "{ name = " + notification.name + "; object = " + object + " }";
}

template <typename View>
std::unique_ptr<View> required(std::unique_ptr<View> view, std::string_view name) {
    if (!view)
        fatalError(formatText("the interface file %@ is missing", {name}));
    return view;
}

}  // namespace

AppDelegate::AppDelegate(const Collaborators& collaborators)
    : with_(collaborators), log_(with_.importWindow.log), strings_(with_.importWindow.strings) {}

void AppDelegate::applicationDidFinishLaunching() {
    InterfaceFiles& files = with_.interfaceFiles;
    std::vector<SettingsWindowController::Tab> tabs;
    tabs.push_back(std::make_shared<SettingsGeneralViewController>(
        required(files.loadGeneralView(), "SettingsGeneralViewController"), strings_));
    tabs.push_back(std::make_shared<SettingsAccountsViewController>(
        required(files.loadAccountsView(), "SettingsAccountsViewController"),
        SettingsAccountsViewController::Collaborators{with_.settings, with_.alerts,
                                                      with_.importWindow.notificationCenter, strings_}));
    tabs.push_back(std::make_shared<SettingsPreferencesViewController>(
        required(files.loadPreferencesView(), "SettingsPreferencesViewController"),
        SettingsPreferencesViewController::Collaborators{with_.settings, with_.alerts, strings_, log_}));

    settingsWindowController_ = std::make_unique<SettingsWindowController>(
        [&files](SettingsWindowEvents& events) { return files.loadSettingsWindow(events); });
    settingsWindowController_->setViewControllers(std::move(tabs));
    settingsWindowController_->setSelectedViewControllerIndex(0);
    if (SettingsWindowView* window = settingsWindowController_->window())
        window->center();
    settingsWindowController_->showWindow();

    with_.importWindow.distributedNotificationCenter.addObserver(
        kReloadDataDistributedNotification,
        [this](const DistributedNotification& notification) { corvaneReloadData(notification); });
    checkForUpdates();
}

bool AppDelegate::applicationShouldHandleReopen() {
    if (settingsWindowController_)
        settingsWindowController_->showWindow();
    return false;
}

void AppDelegate::corvaneReloadData(const DistributedNotification& notification) {
    log_.log(formatText("corvaneReloadData:%@", {describe(notification)}));
    std::optional<AutoImportOptions> options;
    if (const auto* text = std::get_if<std::string>(&notification.object)) {
        if (auto members = parseJsonObject(*text))
            options.emplace(std::move(*members));
    }
    startAutoimportWithOptions(options);
}

void AppDelegate::startAutoimportWithOptions(const std::optional<AutoImportOptions>& options) {
    if (options)
        log_.log(formatText("options:%@", {options->description()}));
    const std::optional<ITunesAccountList> accounts = with_.settings.iTunesAccounts();
    if (!accounts)
        return;
    if (accounts->empty()) {
        showNoAccountsAlert();
        return;
    }
    std::unique_ptr<ReportUpdateView> view = with_.interfaceFiles.loadReportUpdateView();
    if (!view)
        return;
    const auto controller = std::make_shared<ReportUpdateViewController>(with_.importWindow, std::move(view));
    controller->setIsLite(options && options->isLite());
    controller->viewDidLoad();

    const std::shared_ptr<SheetWindow> window = with_.interfaceFiles.makeSheetWindow(controller);
    controller->setWindow(window);
    window->setResizable(false);
    updateWindow_ = window;
    if (settingsWindowController_ && settingsWindowController_->window() != nullptr)
        settingsWindowController_->window()->beginSheet(window);
}

void AppDelegate::checkForUpdates() {
    with_.updateCheck.checkForUpdates();
}

void AppDelegate::parsedUpdateFile(const std::string& version, const std::string& description,
                                   const std::string& downloadLink) {
    with_.updateCheck.parsedUpdateFile(version, description, downloadLink);
}

void AppDelegate::showNoAccountsAlert() {
    with_.alerts.runModal(
        {.style = AlertStyle::Warning,
         .messageText = strings_.localizedString("No iTunes-Connect-Accounts", "Autodownload error message"),
         .informativeText = strings_.localizedString("Please enter your iTunes-Connect-Account.",
                                                     "Autodownload error message"),
         .buttons = {{.title = strings_.localizedString("Close", "Autodownload error message"),
                      .isCancel = false}},
         .accessory = {}});
}

}  // namespace corvane
