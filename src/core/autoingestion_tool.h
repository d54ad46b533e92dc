#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/autoingestion_form.h"
#include "platform/background_queue.h"
#include "platform/date.h"
#include "platform/http_client.h"
#include "platform/local_calendar.h"
#include "platform/log.h"
#include "platform/main_queue.h"

namespace corvane {

/// What became of one requested report.
struct ReportResult {
    /// The service returned a report file, or there was nothing to ask for.
    bool succeeded = false;
    /// The name that the service suggests; absent without a report file.
    std::optional<std::string> fileName;
    /// The requested date; absent in a closing call.
    std::optional<Date> reportDate;
    /// The last date of the list, or a closing call.
    bool isLastReport = false;
    /// The body exactly as sent; absent without a report file.
    std::optional<Bytes> reportData;
};

/// Where the report service is and what a client needs to talk to it. All of it outlives every client and
/// job.
struct ReportServiceConnection {
    std::string host;  ///< host, or host:port
    HttpClient& httpClient;
    MainQueue& mainQueue;
    BackgroundQueue& backgroundQueue;
    Log& log;
};

/// Requests reports of one account from the report service. A client is a value without state between calls;
/// a job keeps what it needs, so the client may go as soon as a request has returned. Its properties must not
/// be changed while it is used on another thread.
class AutoingestionTool {
  public:
    /// On the main queue, two seconds after each answer came there.
    using ReportHandler = std::function<void(ReportResult result)>;
    /// The service's message about a rejected sign-in; on the worker's thread, before that date's result is
    /// posted.
    using LoginErrorHandler = std::function<void(const std::string& message)>;
    /// Of a single report: the flag is always true.
    using SingleReportHandler =
        std::function<void(bool succeeded, std::optional<std::string> fileName,
                           std::optional<Date> reportDate, std::optional<Bytes> reportData)>;

    AutoingestionTool() = delete;

    /// The connection must outlive the client and its jobs.
    AutoingestionTool(const ReportServiceConnection& connection, std::string username, std::string password,
                      std::string vendorID);

    /// Asks for each date in list order, one after the other, on one job of the background queue; returns at
    /// once. The report handler gets one result for each date asked, and one more, the closing call, for an
    /// empty list (succeeded) and after a rejected sign-in, which ends the list (not succeeded). Without a
    /// vendor ID: one log line and no call at all. A job whose HTTP client is
    /// asked to stop ends without a further call. Neither handler may be empty; both live until the job's
    /// last call.
    void requestReports(std::vector<Date> dates, AutoingestionToolDateType dateType,
                        ReportHandler reportHandler, LoginErrorHandler loginErrorHandler) const;

    /// The same for one date; silent without a vendor ID. After a rejected sign-in the report handler is
    /// called for the date and for the closing call.
    void requestReport(Date date, AutoingestionToolDateType dateType, SingleReportHandler reportHandler,
                       LoginErrorHandler loginErrorHandler) const;

    const std::string& usernameString() const { return username_; }
    void setUsernameString(std::string username) { username_ = std::move(username); }
    const std::string& passwordString() const { return password_; }
    void setPasswordString(std::string password) { password_ = std::move(password); }
    const std::optional<std::string>& vendorID() const { return vendorID_; }
    void setVendorID(std::optional<std::string> vendorID) { vendorID_ = std::move(vendorID); }

    /// How report dates are written for the service, whatever the date type.
    static constexpr DateFormat dateFormatter() { return DateFormat::YearMonthDay; }

  private:
    const ReportServiceConnection& connection_;
    std::string username_;
    std::string password_;
    std::optional<std::string> vendorID_;
};

}  // namespace corvane
