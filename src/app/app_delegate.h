#pragma once

#include <memory>
#include <optional>
#include <string>

#include "app/auto_import_options.h"
#include "app/interface_files.h"
#include "app/notification_names.h"
#include "app/report_update_view_controller.h"
#include "app/update_check.h"
#include "platform/alerts.h"
#include "platform/distributed_notification_center.h"
#include "settings/settings_manger.h"
#include "settings_window/settings_window_controller.h"

namespace corvane {

/// The program's single point of control: builds the settings window at launch, and opens the import window
/// when a host application asks for an import. Main thread only.
class AppDelegate {
  public:
    /// All of them outlive the delegate.
    struct Collaborators {
        SettingsManger& settings;
        InterfaceFiles& interfaceFiles;
        Alerts& alerts;
        UpdateCheck& updateCheck;
        const ReportUpdateViewController::Collaborators& importWindow;
    };

    explicit AppDelegate(const Collaborators& collaborators);

    AppDelegate(const AppDelegate&) = delete;
    AppDelegate& operator=(const AppDelegate&) = delete;

    /// Builds and shows the settings window, starts to listen for import requests and checks for updates. A
    /// tab that cannot be loaded is fatal.
    void applicationDidFinishLaunching();

    /// Shows the settings window. False: the caller has nothing more to do.
    bool applicationShouldHandleReopen();

    /// Every setting is written when it is assigned, so nothing is left to do.
    void applicationWillTerminate() {}

    /// Opens an import window, whether or not one is open already; says so when there are no accounts.
    /// Without options the import is for the full edition.
    void startAutoimportWithOptions(const std::optional<AutoImportOptions>& options);

    /// A host application's request. One whose object cannot be read is a request without options.
    void corvaneReloadData(const DistributedNotification& notification);

    /// Looks for a newer version in the background and returns at once.
    void checkForUpdates();

    /// Offers the download of the version that the update feed publishes, when it is a newer one.
    void parsedUpdateFile(const std::string& version, const std::string& description,
                          const std::string& downloadLink);

    /// Null before the launch.
    SettingsWindowController* settingsWindowController() const { return settingsWindowController_.get(); }
    /// The window of the latest import; null before the first.
    const std::shared_ptr<SheetWindow>& updateWindow() const { return updateWindow_; }

    const std::string kReloadDataDistributedNotification = kNotificationCorvaneReloadData;

  private:
    void showNoAccountsAlert();

    const Collaborators with_;
    Log& log_;
    LocalizedStrings& strings_;
    std::unique_ptr<SettingsWindowController> settingsWindowController_;
    std::shared_ptr<SheetWindow> updateWindow_;
};

}  // namespace corvane
