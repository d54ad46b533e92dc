#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/autoingestion_tool.h"
#include "engine/report_calendar.h"
#include "engine/report_storage.h"
#include "platform/alerts.h"
#include "platform/clock.h"
#include "platform/localized_strings.h"
#include "settings/settings_manger.h"

namespace corvane {

/// What an update run tells about one answer of the service.
struct UpdateProgress {
    bool succeeded = false;           ///< the answer's own flag
    std::optional<std::string> path;  ///< where the report was stored; absent without a report
    std::int64_t reportsDone = 0;     ///< answers before this one
    std::int64_t reportsTotal = 0;    ///< requests handed out
    bool isFinished = false;          ///< the run is over with this answer
};

/// Fetches the missing reports of all accounts, and remembers which ones came. Runs are independent of each
/// other; one lives as long as its last callback. Main thread only.
class ReportUpdateManager {
  public:
    using ProgressHandler = std::function<void(const UpdateProgress& progress)>;

    /// All of them outlive the manager and its runs.
    struct Collaborators {
        SettingsManger& settings;
        const ReportServiceConnection& service;
        FileManager& fileManager;
        Clock& clock;
        Alerts& alerts;
        LocalizedStrings& strings;
    };

    /// A missing container for the reports is fatal.
    explicit ReportUpdateManager(const Collaborators& collaborators);

    ReportUpdateManager(const ReportUpdateManager&) = delete;
    ReportUpdateManager& operator=(const ReportUpdateManager&) = delete;

    /// The manager that the program made. Calling it before there is one is a fault.
    static ReportUpdateManager& sharedManager();
    /// Null takes the shared manager back.
    static void setSharedManager(ReportUpdateManager* manager);

    /// Which edition of the host application runs serve: it chooses the cache that they read at their start,
    /// and the one that they write at their end.
    bool isLite() const { return isLite_; }
    void setIsLite(bool isLite) { isLite_ = isLite; }

    /// Starts a run and returns when all requests are handed to the clients. The handler is called on the
    /// main queue for every answer, and at once, in here, when no account can take part; never without
    /// accounts.
    void updateDailyReports(ProgressHandler handler);

    /// The dates of the type that the edition's cache lacks.
    std::vector<Date> dueReportDates(SaleDataReportType type) const;

    FileManager& fileManager() const { return with_.fileManager; }
    const std::filesystem::path& reportPath() const { return storage_.reportPath(); }
    std::filesystem::path filePathForFilename(std::string_view filename) const;
    std::optional<std::string> createTempFile(const std::string& filename, Bytes data);

  private:
    struct Run;
    struct SignInError;

    void requestReports(const ITunesAccount& account, const std::shared_ptr<Run>& run);
    void handleResult(ReportResult result, SaleDataReportType type, const SignInError& signInError, Run& run);
    std::optional<std::string> store(ReportResult& result, SaleDataReportType type, Run& run);
    void finish(const SignInError& signInError, const Run& run);

    const std::optional<ReportKeys>& selectedCache() const;
    void setSelectedCache(ReportKeys keys);

    const Collaborators with_;
    Log& log_;
    ReportStorage storage_;
    bool isLite_ = false;
};

}  // namespace corvane
