#include "engine/report_update_manager.h"

#include <iterator>
#include <mutex>
#include <utility>

#include "engine/report_key_list.h"
#include "platform/fatal_error.h"
#include "platform/text_format.h"

namespace corvane {

namespace {

ReportUpdateManager* sharedReportUpdateManager = nullptr;

}  // namespace

/// What all callbacks of one run share.
struct ReportUpdateManager::Run {
    ProgressHandler handler;
    ReportKeyList downloadedKeys;
    std::int64_t accountCount;  ///< accounts that take part
    Date begin;
    std::vector<std::vector<Date>> dueDates;  ///< by type; the same for every account
    std::int64_t batchesDone = 0;
    std::int64_t reportsTotal = 0;
    std::int64_t reportsDone = 0;
};

/// What the service said about one account's sign-in. Its four clients report from four workers.
struct ReportUpdateManager::SignInError {
  public:
    void set(const std::string& message) {
        const std::lock_guard lock(mutex_);
        message_ = message;
    }

    std::optional<std::string> message() const {
        const std::lock_guard lock(mutex_);
        return message_;
    }

  private:
    mutable std::mutex mutex_;
    std::optional<std::string> message_;
};

ReportUpdateManager::ReportUpdateManager(const Collaborators& collaborators)
    : with_(collaborators), log_(with_.service.log), storage_(with_.fileManager, log_) {}

ReportUpdateManager& ReportUpdateManager::sharedManager() {
    if (sharedReportUpdateManager == nullptr)
        fatalError("the report update manager was asked for before the program made it");
    return *sharedReportUpdateManager;
}

void ReportUpdateManager::setSharedManager(ReportUpdateManager* manager) {
    sharedReportUpdateManager = manager;
}

void ReportUpdateManager::updateDailyReports(ProgressHandler handler) {
    log_.log(formatText("updateDailyReports Lite:%@", {isLite_ ? "1" : "0"}));
    const std::optional<ITunesAccountList> accounts = with_.settings.iTunesAccounts();
    if (!accounts)
        return;

    const auto run =
        std::make_shared<Run>(Run{.handler = std::move(handler),
                                  .downloadedKeys = ReportKeyList(selectedCache().value_or(ReportKeys{})),
                                  .accountCount = std::ssize(*accounts),
                                  .begin = with_.clock.now(),
                                  .dueDates = {}});
    for (const SaleDataReportType type : allReportTypes)
        run->dueDates.push_back(corvane::dueReportDates(type, run->begin, selectedCache()));
    for (const std::shared_ptr<ITunesAccount>& account : *accounts) {
        if (account->email() && account->password() && account->vendorID()) {
            requestReports(*account, run);
            continue;
        }
        const bool wasLastExpected = run->accountCount == 1;
        --run->accountCount;
        if (wasLastExpected)
            run->handler(
                {.succeeded = false, .path = {}, .reportsDone = 1, .reportsTotal = 1, .isFinished = true});
    }
}

void ReportUpdateManager::requestReports(const ITunesAccount& account, const std::shared_ptr<Run>& run) {
    const auto signInError = std::make_shared<SignInError>();
    for (const SaleDataReportType type : allReportTypes) {
        logBaseDate(type, run->begin, log_);
        std::vector<Date> dates = run->dueDates[static_cast<std::size_t>(type)];
        run->reportsTotal += std::ssize(dates);
        const AutoingestionTool client(with_.service, *account.email(), *account.password(),
                                       *account.vendorID());
        client.requestReports(
            std::move(dates), dateTypeOfOrdinal(static_cast<unsigned>(type)),
            [this, run, signInError, type](ReportResult result) {
                handleResult(std::move(result), type, *signInError, *run);
            },
            [signInError](const std::string& message) { signInError->set(message); });
    }
}

void ReportUpdateManager::handleResult(ReportResult result, SaleDataReportType type,
                                       const SignInError& signInError, Run& run) {
    std::optional<std::string> path = store(result, type, run);
    bool isFinished = false;
    if (result.isLastReport) {
        ++run.batchesDone;
        // A sign-in rejected on a list's last date counts that list twice, so the count can pass the goal:
        // equality ends the run once.
        isFinished = run.batchesDone == run.accountCount * std::ssize(allReportTypes);
    }
    if (isFinished)
        finish(signInError, run);
    run.handler({.succeeded = result.succeeded,
                 .path = std::move(path),
                 .reportsDone = run.reportsDone,
                 .reportsTotal = run.reportsTotal,
                 .isFinished = isFinished});
    ++run.reportsDone;
}

std::optional<std::string> ReportUpdateManager::store(ReportResult& result, SaleDataReportType type,
                                                      Run& run) {
    if (!result.fileName) {
        log_.log("download not sucessfull");
        return std::nullopt;
    }
    log_.log(formatText("file:%@ downloaded sucessfully", {*result.fileName}));
    if (!result.reportData)
        return std::nullopt;
    // The key counts from the answer on, whatever becomes of the file: asking again would bring the same
    // bytes.
    if (result.reportDate)
        run.downloadedKeys.add(reportKey(*result.reportDate, type));
    return createTempFile(*result.fileName, std::move(*result.reportData));
}

void ReportUpdateManager::finish(const SignInError& signInError, const Run& run) {
    storage_.flush();  // first: what the cache knows is not asked for again
    setSelectedCache(run.downloadedKeys.keys());
    const std::optional<std::string> message = signInError.message();
    if (!message)
        return;
    with_.alerts.runModal(
        {.style = AlertStyle::Critical,
         .messageText = with_.strings.localizedString("Failed to download new data", "Wrong password."),
         .informativeText = *message,
         .buttons = {},
         .accessory = {}});
}

std::vector<Date> ReportUpdateManager::dueReportDates(SaleDataReportType type) const {
    const Date now = with_.clock.now();
    std::vector<Date> dates = corvane::dueReportDates(type, now, selectedCache());
    logBaseDate(type, now, log_);
    return dates;
}

std::filesystem::path ReportUpdateManager::filePathForFilename(std::string_view filename) const {
    return storage_.filePathForFilename(filename);
}

std::optional<std::string> ReportUpdateManager::createTempFile(const std::string& filename, Bytes data) {
    return storage_.createTempFile(filename, std::move(data));
}

const std::optional<ReportKeys>& ReportUpdateManager::selectedCache() const {
    return isLite_ ? with_.settings.reportsDownloadedLiteCache() : with_.settings.reportsDownloadedCache();
}

void ReportUpdateManager::setSelectedCache(ReportKeys keys) {
    if (isLite_)
        with_.settings.setReportsDownloadedLiteCache(std::move(keys));
    else
        with_.settings.setReportsDownloadedCache(std::move(keys));
}

}  // namespace corvane
