#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "app/report_update_view.h"
#include "app/resource_url.h"
#include "engine/report_update_manager.h"
#include "platform/application.h"
#include "platform/distributed_notification_center.h"
#include "platform/file_manager.h"
#include "platform/localized_strings.h"
#include "platform/log.h"
#include "platform/main_queue.h"
#include "platform/notification_center.h"
#include "settings_window/settings_window_view.h"

namespace corvane {

/// The import window: starts one run of the report update, shows how far it is, and announces its end.
/// Shared, because its run keeps it alive until the last answer, also when its window is dropped before. Main
/// thread only.
class ReportUpdateViewController final : public ReportUpdateViewEvents,
                                         public std::enable_shared_from_this<ReportUpdateViewController> {
  public:
    /// All of them outlive the controller.
    struct Collaborators {
        ReportUpdateManager& reportUpdateManager;
        FileManager& fileManager;
        MainQueue& mainQueue;
        NotificationCenter& notificationCenter;
        DistributedNotificationCenter& distributedNotificationCenter;
        Application& application;
        LocalizedStrings& strings;
        Log& log;
    };

    ReportUpdateViewController(const Collaborators& collaborators, std::unique_ptr<ReportUpdateView> view);

    ReportUpdateViewController(const ReportUpdateViewController&) = delete;
    ReportUpdateViewController& operator=(const ReportUpdateViewController&) = delete;

    ReportUpdateView* view() const { return view_.get(); }
    /// The window that holds the view; it owns this controller.
    void setWindow(const std::shared_ptr<SheetWindow>& window) { window_ = window; }

    /// Whether the run serves the Lite edition of the host application; set before the view is shown.
    bool isLite() const { return isLite_; }
    void setIsLite(bool isLite) { isLite_ = isLite; }

    /// From the start of the run until its end.
    bool isDownloadingReports() const { return isDownloadingReports_; }
    /// Answers so far and requests in all, as the run told last.
    std::int64_t downloadCounter() const { return downloadCounter_; }
    std::int64_t downloadGoal() const { return downloadGoal_; }
    /// The files of the finished run in the order in which they came, or what `loadURLs` was given.
    const std::vector<ResourceUrl>& urls() const { return urls_; }

    void viewDidLoad();
    void viewWillAppear() override;
    /// The run starts one second later.
    void viewDidAppear() override;

    /// Brings labels and bar up to date.
    void updateView();

    /// Keeps the list, and copies each file into the folder "Reports" of the shared container; a file of the
    /// same name there stays as it is. A missing container is fatal, a failed copy silent.
    void loadURLs(std::vector<ResourceUrl> urls);

  private:
    void startRun();
    void handleProgress(const UpdateProgress& progress, std::vector<ResourceUrl>& urlsOfRun);
    void finish(bool lastAnswerSucceeded, std::vector<ResourceUrl> urlsOfRun);
    void copyIntoReportsFolder(const ResourceUrl& url);

    const Collaborators with_;
    std::unique_ptr<ReportUpdateView> view_;
    std::weak_ptr<SheetWindow> window_;
    std::vector<ResourceUrl> urls_;
    bool isLite_ = false;
    bool isDownloadingReports_ = false;
    std::int64_t downloadCounter_ = 0;
    std::int64_t downloadGoal_ = 0;
};

}  // namespace corvane
