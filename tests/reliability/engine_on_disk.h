#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "engine/report_update_manager.h"
#include "platform/memory/in_memory_log.h"
#include "platform/memory/manual_clock.h"
#include "platform/memory/manual_main_queue.h"
#include "platform/memory/scripted_alerts.h"
#include "platform/memory/source_language_strings.h"
#include "platform/system/posix_file_manager.h"
#include "platform/system/property_list_file_store.h"

namespace corvane::test {

/// The engine with the settings file and the report folder of a home on disk, as a start of the program finds
/// them. What answers, and on which threads jobs run, is the test's.
struct EngineOnDisk {
    struct Surroundings {
        std::filesystem::path home;
        HttpClient& httpClient;
        BackgroundQueue& backgroundQueue;
        FileManager* fileManager = nullptr;  ///< instead of the home's own
        std::string serviceHost = "service.example";
    };

    explicit EngineOnDisk(const Surroundings& surroundings);

    static std::filesystem::path settingsFile(const std::filesystem::path& home) {
        return home / "config/corvane/settings.plist";
    }
    static std::filesystem::path containerFolder(const std::filesystem::path& home) {
        return home / "data" / applicationGroupIdentifier;
    }
    static std::filesystem::path reportFolder(const std::filesystem::path& home) {
        return containerFolder(home) / "ToImport";
    }

    /// What the program does at its start: removes what killed processes have left.
    void removeLeftOvers() const;

    void addAccount(const std::string& vendorID);

    /// Makes every report fetched already but the newest days.
    void fillCacheExceptDays(std::size_t count);
    /// Makes every report fetched already but the newest ones of each type. A key that two types share may be
    /// there all the same.
    void fillCacheExceptNewest(std::size_t count);
    /// The keys of all dates that are due now.
    std::set<std::string> dueKeys() const;

    /// Starts a run; its progress is counted in the members below.
    void startRun();
    /// Lets due main-queue tasks run.
    void turn() { mainQueue.advance(std::chrono::seconds(10)); }

    std::filesystem::path home;
    InMemoryLog log;
    ManualClock clock{startOfLocalDay(std::chrono::year{2015} / 6 / 17) + std::chrono::hours{12}};
    PosixFileManager files;
    PropertyListFileStore store;
    SettingsManger settings{store};
    ManualMainQueue mainQueue;
    ScriptedAlerts alerts;
    SourceLanguageStrings strings;
    ReportServiceConnection connection;
    ReportUpdateManager manager;

    int answers = 0;
    int finishes = 0;
    std::vector<std::string> paths;

  private:
    void fillCacheExcept(const std::map<SaleDataReportType, std::size_t>& missing);
};

/// The lines that start with the text.
std::size_t countLines(const InMemoryLog& log, std::string_view start);

/// The names of a folder's entries, hidden ones included; none when there is no such folder.
std::set<std::string> namesIn(const std::filesystem::path& folder);

}  // namespace corvane::test
