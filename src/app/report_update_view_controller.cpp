#include "app/report_update_view_controller.h"

#include <chrono>
#include <utility>

#include "app/notification_names.h"
#include "platform/fatal_error.h"
#include "platform/text_format.h"

namespace corvane {

namespace {

constexpr std::chrono::seconds delayBeforeRun{1};

}  // namespace

ReportUpdateViewController::ReportUpdateViewController(const Collaborators& collaborators,
                                                       std::unique_ptr<ReportUpdateView> view)
    : with_(collaborators), view_(std::move(view)) {}

void ReportUpdateViewController::viewDidLoad() {
    view_->startProgressAnimation();
}

void ReportUpdateViewController::viewWillAppear() {
    view_->setDescription(with_.strings.localizedString("Preparing Import...", "Import window"));
}

void ReportUpdateViewController::viewDidAppear() {
    with_.mainQueue.asyncAfter(delayBeforeRun, [self = shared_from_this()] { self->startRun(); });
}

void ReportUpdateViewController::startRun() {
    isDownloadingReports_ = true;
    const auto urlsOfRun = std::make_shared<std::vector<ResourceUrl>>();
    with_.reportUpdateManager.setIsLite(isLite_);
    with_.reportUpdateManager.updateDailyReports(
        [self = shared_from_this(), urlsOfRun](const UpdateProgress& progress) {
            self->handleProgress(progress, *urlsOfRun);
        });
}

void ReportUpdateViewController::handleProgress(const UpdateProgress& progress,
                                                std::vector<ResourceUrl>& urlsOfRun) {
    downloadCounter_ = progress.reportsDone;
    downloadGoal_ = progress.reportsTotal;
    if (progress.path)
        urlsOfRun.push_back(ResourceUrl::ofFile(*progress.path));
    with_.mainQueue.async([self = shared_from_this()] { self->updateView(); });
    if (progress.isFinished)
        finish(progress.succeeded, std::move(urlsOfRun));
}

void ReportUpdateViewController::finish(bool lastAnswerSucceeded, std::vector<ResourceUrl> urlsOfRun) {
    isDownloadingReports_ = false;
    urls_ = std::move(urlsOfRun);
    const std::shared_ptr<SheetWindow> window = window_.lock();
    if (!window || !window->endSheet())
        fatalError("the import window is not a sheet of any window");
    with_.notificationCenter.post({reportUpdateViewControllerDidFinishNotification, shared_from_this()});
    with_.distributedNotificationCenter.post(reportUpdateViewControllerDidFinishDistributedNotification);
    if (lastAnswerSucceeded)
        with_.application.terminate();
}

void ReportUpdateViewController::updateView() {
    double percentage = 0.0;
    if (isDownloadingReports_) {
        view_->setDescription(
            formatText(with_.strings.localizedString("Downloaded %i of %i reports", "Import window"),
                       {downloadCounter_, downloadGoal_}));
        percentage = static_cast<double>(downloadCounter_) / static_cast<double>(downloadGoal_) * 100.0;
    }
    view_->setProgressText(
        formatText(with_.strings.localizedString("%.2f%% completed", "Import window"), {percentage}));
    view_->setProgressValue(percentage);
}

void ReportUpdateViewController::loadURLs(std::vector<ResourceUrl> urls) {
    urls_ = std::move(urls);
    for (const ResourceUrl& url : urls_) {
        if (url.isFileUrl())
            copyIntoReportsFolder(url);
    }
}

void ReportUpdateViewController::copyIntoReportsFolder(const ResourceUrl& url) {
    const auto container = with_.fileManager.containerForApplicationGroup(applicationGroupIdentifier);
    if (!container)
        fatalError("the shared folder of the application group is missing");
    const std::filesystem::path folder = *container / "Reports";
    if (!with_.fileManager.fileExistsAtPath(folder))
        with_.fileManager.createDirectoryAtPath(folder);  // without the folder the copy fails, too
    const auto source = url.filePath();
    if (!source || source->filename().empty())
        return;
    const std::filesystem::path destination = folder / source->filename();
    with_.log.log(formatText("copy from:%@ to:%@", {source->native(), destination.native()}));
    with_.fileManager.copyItem(*source, destination);
}

}  // namespace corvane
