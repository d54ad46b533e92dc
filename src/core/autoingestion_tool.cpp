#include "core/autoingestion_tool.h"

#include <chrono>
#include <cstddef>
#include <memory>
#include <string_view>

#include "core/form_value_encoding.h"
#include "platform/suggested_file_name.h"
#include "platform/text_format.h"

namespace corvane {

namespace {

constexpr std::chrono::seconds deliveryDelay{2};

// The service names its answer so when it has no report or refuses the request.
constexpr std::string_view refusalNamePrefix = "autoingestion";
constexpr std::string_view rejectedSignInText =
    "Your AppleConnect account or password was entered incorrectly.";

// One call of requestReports(). Nothing in it changes after it was made, so the worker and the main thread
// share it without a lock.
struct Job {
    const ReportServiceConnection& connection;
    std::string username;
    std::string password;
    std::string vendorID;
    std::vector<Date> dates;
    AutoingestionToolDateType dateType;
    AutoingestionTool::ReportHandler reportHandler;
    AutoingestionTool::LoginErrorHandler loginErrorHandler;
};
using SharedJob = std::shared_ptr<const Job>;

struct Answer {
    ReportResult result{};
    std::optional<std::string> rejectedSignIn{};  // the service's message
    bool isCancelled = false;                     // the program ends
};

// The queue's tasks are copyable, a report's bytes are not to be copied: the tasks share one delivery.
struct Delivery {
    SharedJob job;
    ReportResult result;
};

// The delay starts when the main queue gets to the result, not when the worker posts it. That keeps the order
// of a job's results, whatever the main queue is busy with.
void deliver(const SharedJob& job, ReportResult result) {
    auto delivery = std::make_shared<Delivery>(Delivery{job, std::move(result)});
    job->connection.mainQueue.asyncAfterTurn(deliveryDelay, [delivery = std::move(delivery)] {
        delivery->job->reportHandler(std::move(delivery->result));
    });
}

ReportResult closingCall(bool succeeded) {
    ReportResult result;
    result.succeeded = succeeded;
    result.isLastReport = true;
    return result;
}

// Absent when the host cannot stand in a URL. The path's empty query belongs to the service's address.
std::optional<std::string> reportServiceURL(const std::string& host) {
    if (escapeIllegalURLCharacters(host) != host)
        return std::nullopt;
    return "https://" + host + "/autoingestion.tft?";
}

HttpRequest requestFor(const Job& job, Date date, std::string url) {
    const std::string dateText = formatLocalDate(date, AutoingestionTool::dateFormatter());
    AutoingestionForm form;
    form.username = job.username;
    form.password = job.password;
    form.vendorID = job.vendorID;
    form.dateType = job.dateType;
    form.reportDate = dateText;

    HttpRequest request;
    request.method = "POST";
    request.url = std::move(url);
    request.headers = {{"Content-Type", "application/x-www-form-urlencoded"}};
    request.body = formBody(form);
    return request;
}

// Only the suggested name tells a report from a refusal; the status code does not count.
Answer classify(HttpAnswer answer, Log& log) {
    if (answer.isCancelled)
        return {.isCancelled = true};
    if (!answer.body) {
        log.log(formatText("failed to get data:%@", {answer.errorDescription}));
        log.log("no data");
        return {};
    }
    if (!answer.response)
        return {};
    std::string name = suggestedFileName(*answer.response);
    Answer classified;
    if (!name.starts_with(refusalNamePrefix)) {
        classified.result.succeeded = true;
        classified.result.fileName = std::move(name);
        classified.result.reportData = std::move(answer.body);
        return classified;
    }
    std::optional<std::string> message = answer.response->headerField("ERRORMSG");
    if (message && message->find(rejectedSignInText) != std::string::npos)
        classified.rejectedSignIn = std::move(message);
    return classified;
}

Answer ask(const Job& job, Date date) {
    std::optional<std::string> url = reportServiceURL(job.connection.host);
    if (!url)
        return {};
    const HttpRequest request = requestFor(job, date, *std::move(url));
    return classify(job.connection.httpClient.sendSynchronousRequest(request), job.connection.log);
}

void askForAllDates(const SharedJob& job) {
    const std::size_t count = job->dates.size();
    for (std::size_t i = 0; i < count; ++i) {
        const Date date = job->dates[i];
        Answer answer = ask(*job, date);
        if (answer.isCancelled)
            return;
        answer.result.reportDate = date;
        answer.result.isLastReport = i + 1 == count;
        // The message first: whoever handles the result finds it in place.
        if (answer.rejectedSignIn)
            job->loginErrorHandler(*answer.rejectedSignIn);
        deliver(job, std::move(answer.result));
        if (answer.rejectedSignIn) {
            deliver(job, closingCall(false));
            return;
        }
    }
}

}  // namespace

AutoingestionTool::AutoingestionTool(const ReportServiceConnection& connection, std::string username,
                                     std::string password, std::string vendorID)
    : connection_(connection),
      username_(std::move(username)),
      password_(std::move(password)),
      vendorID_(std::move(vendorID)) {}

void AutoingestionTool::requestReports(std::vector<Date> dates, AutoingestionToolDateType dateType,
                                       ReportHandler reportHandler,
                                       LoginErrorHandler loginErrorHandler) const {
    if (!vendorID_) {
        connection_.log.log("VENDOR ID MUSS GESETZT SEIN");
        return;
    }
    SharedJob job =
        std::make_shared<const Job>(Job{connection_, username_, password_, *vendorID_, std::move(dates),
                                        dateType, std::move(reportHandler), std::move(loginErrorHandler)});
    if (job->dates.empty()) {
        deliver(job, closingCall(true));
        return;
    }
    connection_.backgroundQueue.async([job = std::move(job)] { askForAllDates(job); });
}

void AutoingestionTool::requestReport(Date date, AutoingestionToolDateType dateType,
                                      SingleReportHandler reportHandler,
                                      LoginErrorHandler loginErrorHandler) const {
    if (!vendorID_)
        return;
    // The outcome is dropped on purpose: callers tell a missing report by its absent data.
    auto handler = [reportHandler = std::move(reportHandler)](ReportResult result) {
        reportHandler(true, std::move(result.fileName), result.reportDate, std::move(result.reportData));
    };
    requestReports({date}, dateType, std::move(handler), std::move(loginErrorHandler));
}

}  // namespace corvane
