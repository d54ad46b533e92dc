#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "core/gzip_codec.h"
#include "engine/report_update_manager.h"
#include "platform/memory/in_memory_file_manager.h"
#include "platform/memory/in_memory_key_value_store.h"
#include "platform/memory/in_memory_log.h"
#include "platform/memory/manual_background_queue.h"
#include "platform/memory/manual_clock.h"
#include "platform/memory/manual_main_queue.h"
#include "platform/memory/scripted_alerts.h"
#include "platform/memory/scripted_http_client.h"
#include "platform/memory/source_language_strings.h"

namespace corvane::test {

inline constexpr const char* signInMessage =
    "Your AppleConnect account or password was entered incorrectly. Please try again.";

/// The fields of a form as the service receives them, escapes left as they are.
inline std::map<std::string, std::string> formFields(const std::string& body) {
    std::map<std::string, std::string> fields;
    for (std::size_t start = 0; start < body.size();) {
        const std::size_t end = std::min(body.find('&', start), body.size());
        const std::size_t equals = body.find('=', start);
        fields[body.substr(start, equals - start)] = body.substr(equals + 1, end - equals - 1);
        start = end + 1;
    }
    return fields;
}

/// The service's answers, as an HTTP client hands them over.
inline HttpAnswer answerWithFile(const std::string& name, const std::string& text) {
    HttpResponse response{
        .statusCode = 200, .url = "https://service.example/autoingestion.tft?", .headers = {}};
    response.headers.push_back({"Content-Disposition", "attachment; filename=" + name});
    return {.response = response, .body = gzippedData(toBytes(text)), .errorDescription = {}};
}

inline HttpAnswer answerWithMessage(const std::string& message) {
    HttpResponse response{
        .statusCode = 200, .url = "https://service.example/autoingestion.tft?", .headers = {}};
    response.headers.push_back({"ERRORMSG", message});
    return {.response = response, .body = toBytes(message), .errorDescription = {}};
}

inline HttpAnswer answerWithTransportFailure() {
    return {.response = {}, .body = {}, .errorDescription = "The network connection was lost."};
}

/// A service that has every report.
inline HttpAnswer answerWithItsReport(const HttpRequest& request) {
    const auto fields = formFields(request.body);
    const std::string name = "S_" + fields.at("DATETYPE").substr(0, 1) + "_" + fields.at("VNDNUMBER") + "_" +
                             fields.at("REPORTDATE") + ".txt.gz";
    return answerWithFile(name, "report of " + fields.at("REPORTDATE"));
}

/// The engine with everything around it in memory and a service that a function plays.
struct EngineEnvironment {
    explicit EngineEnvironment(
        std::unique_ptr<LocalizedStrings> texts = std::make_unique<SourceLanguageStrings>())
        : ownedStrings(std::move(texts)) {}

    const std::unique_ptr<LocalizedStrings> ownedStrings;
    std::function<HttpAnswer(const HttpRequest&)> service = answerWithItsReport;

    InMemoryLog log;
    InMemoryKeyValueStore defaults;
    SettingsManger settings{defaults};
    ManualMainQueue mainQueue;
    ManualBackgroundQueue backgroundQueue;
    ScriptedHttpClient httpClient{[this](const HttpRequest& request) { return service(request); }};
    InMemoryFileManager files;
    ManualClock clock{startOfLocalDay(std::chrono::year{2015} / 6 / 17) + std::chrono::hours{12}};
    ScriptedAlerts alerts;
    LocalizedStrings& strings = *ownedStrings;
    ReportServiceConnection connection{"service.example", httpClient, mainQueue, backgroundQueue, log};
    ReportUpdateManager manager{{settings, connection, files, clock, alerts, strings}};

    /// Appends a complete account to the settings.
    std::shared_ptr<ITunesAccount> addAccount(const std::string& vendorID) {
        auto account = std::make_shared<ITunesAccount>(vendorID, "Account " + vendorID);
        account->setEmail("user" + vendorID + "@example.com");
        account->setPassword("secret" + vendorID);
        auto accounts = settings.iTunesAccounts().value_or(ITunesAccountList{});
        accounts.push_back(account);
        settings.setITunesAccounts(accounts);
        return account;
    }

    /// Makes every report of the past fetched already but those that `isMissing` names by key.
    void fillCache(const std::function<bool(const std::string& key)>& isMissing) {
        settings.setReportsDownloadedCache(std::nullopt);
        ReportKeys keys;
        for (const SaleDataReportType type : allReportTypes) {
            for (const Date date : manager.dueReportDates(type)) {
                if (const std::string key = reportKey(date, type); !isMissing(key))
                    keys.push_back(key);
            }
        }
        settings.setReportsDownloadedCache(keys);
    }

    /// Runs all jobs and delivers every result.
    void runToEnd() {
        while (backgroundQueue.pendingCount() + mainQueue.pendingCount() > 0) {
            backgroundQueue.runAll();
            mainQueue.advance(std::chrono::seconds{10});
        }
    }
};

}  // namespace corvane::test
