#include "reliability/engine_on_disk.h"

#include <algorithm>

#include "platform/system/atomic_file.h"

namespace corvane::test {

EngineOnDisk::EngineOnDisk(const Surroundings& surroundings)
    : home(surroundings.home),
      files(home / "data"),
      store(settingsFile(home), log, clock),
      connection{surroundings.serviceHost, surroundings.httpClient, mainQueue, surroundings.backgroundQueue,
                 log},
      manager({settings, connection, surroundings.fileManager != nullptr ? *surroundings.fileManager : files,
               clock, alerts, strings}) {}

void EngineOnDisk::removeLeftOvers() const {
    corvane::removeLeftOvers(settingsFile(home).parent_path());
    corvane::removeLeftOvers(reportFolder(home));
}

void EngineOnDisk::addAccount(const std::string& vendorID) {
    auto account = std::make_shared<ITunesAccount>(vendorID, "Account " + vendorID);
    account->setEmail("user" + vendorID + "@example.com");
    account->setPassword("secret" + vendorID);
    auto accounts = settings.iTunesAccounts().value_or(ITunesAccountList{});
    accounts.push_back(std::move(account));
    settings.setITunesAccounts(std::move(accounts));
}

void EngineOnDisk::fillCacheExceptDays(std::size_t count) {
    fillCacheExcept({{SaleDataReportType::Daily, count}});
}

void EngineOnDisk::fillCacheExceptNewest(std::size_t count) {
    std::map<SaleDataReportType, std::size_t> missing;
    for (const SaleDataReportType type : allReportTypes)
        missing[type] = count;
    fillCacheExcept(missing);
}

void EngineOnDisk::fillCacheExcept(const std::map<SaleDataReportType, std::size_t>& missing) {
    settings.setReportsDownloadedCache(std::nullopt);
    ReportKeys keys;
    for (const SaleDataReportType type : allReportTypes) {
        std::vector<Date> dates = manager.dueReportDates(type);
        if (const auto count = missing.find(type); count != missing.end())
            dates.resize(dates.size() - count->second);
        for (const Date date : dates)
            keys.push_back(reportKey(date, type));
    }
    settings.setReportsDownloadedCache(std::move(keys));
}

std::set<std::string> EngineOnDisk::dueKeys() const {
    std::set<std::string> keys;
    for (const SaleDataReportType type : allReportTypes) {
        for (const Date date : manager.dueReportDates(type))
            keys.insert(reportKey(date, type));
    }
    return keys;
}

void EngineOnDisk::startRun() {
    manager.updateDailyReports([this](const UpdateProgress& progress) {
        ++answers;
        finishes += progress.isFinished ? 1 : 0;
        if (progress.path)
            paths.push_back(*progress.path);
    });
}

std::size_t countLines(const InMemoryLog& log, std::string_view start) {
    const std::vector<std::string> lines = log.lines();
    return static_cast<std::size_t>(std::count_if(
        lines.begin(), lines.end(), [start](const std::string& line) { return line.starts_with(start); }));
}

std::set<std::string> namesIn(const std::filesystem::path& folder) {
    std::set<std::string> names;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(folder, error))
        names.insert(entry.path().filename().native());
    return names;
}

}  // namespace corvane::test
