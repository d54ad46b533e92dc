#pragma once

#include "app/app_delegate.h"
#include "core/autoingestion_tool.h"
#include "desktop/build_bundle.h"
#include "desktop/build_settings.h"
#include "desktop/end_deadline.h"
#include "desktop/qt_alerts.h"
#include "desktop/qt_application.h"
#include "desktop/qt_interface_files.h"
#include "desktop/qt_main_queue.h"
#include "desktop/qt_workspace.h"
#include "engine/report_update_manager.h"
#include "platform/notification_center.h"
#include "platform/system/curl_http_client.h"
#include "platform/system/gettext_strings.h"
#include "platform/system/posix_file_manager.h"
#include "platform/system/property_list_file_store.h"
#include "platform/system/system_clock.h"
#include "platform/system/thread_pool_queue.h"
#include "settings/settings_manger.h"

namespace corvane {

/// The program once it is known that it is the only one in its session: owns every object in the order in
/// which they need each other. Main thread only.
class RunningProgram {
  public:
    /// What outlives the program.
    struct Surroundings {
        Log& log;
        DistributedNotificationCenter& distributedNotificationCenter;
        EndDeadline& endDeadline;
    };

    RunningProgram(const BuildSettings& buildSettings, const Surroundings& surroundings);
    ~RunningProgram();

    RunningProgram(const RunningProgram&) = delete;
    RunningProgram& operator=(const RunningProgram&) = delete;

    /// Removes what a killed process has left in our folders. Only for the process that owns the program's
    /// name: another one may be writing.
    void removeLeftOvers();

    /// What the menu offers; the bus does as well.
    MenuCommands menuCommands();

    AppDelegate& delegate() { return delegate_; }
    Application& application() { return application_; }

    /// Ends all requests and threads. The process must end without destroying the program when this is false.
    bool stopWork(std::chrono::milliseconds limit);

  private:
    ProgramFacts facts() const;
    void openReportsFolder();
    void showAbout();

    const Surroundings surroundings_;
    const BuildBundle bundle_;
    SystemClock clock_;
    GettextStrings strings_;
    PosixFileManager fileManager_;
    PropertyListFileStore userDefaults_;
    SettingsManger settings_;
    NotificationCenter notificationCenter_;
    QtMainQueue mainQueue_;
    CurlHttpClient httpClient_;
    ThreadPoolQueue backgroundQueue_;
    QtAlerts alerts_;
    QtWorkspace workspace_;
    QtApplication application_;
    const ReportServiceConnection reportService_;
    ReportUpdateManager reportUpdateManager_;
    QtInterfaceFiles interfaceFiles_;
    const ReportUpdateViewController::Collaborators importWindow_;
    const QVApp metadata_;
    UpdateCheck updateCheck_;
    AppDelegate delegate_;
};

}  // namespace corvane
