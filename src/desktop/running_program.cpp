#include "desktop/running_program.h"

#include "app/resource_url.h"
#include "desktop/qt_text.h"
#include "platform/fatal_error.h"
#include "platform/system/atomic_file.h"
#include "platform/system/user_directories.h"

namespace corvane {

namespace {

/// From the wish to end to the end of the process, at most.
constexpr std::chrono::milliseconds endLimit{850};

std::filesystem::path requiredSettingsFile() {
    const auto path = settingsFilePath();
    if (!path)
        fatalError("there is no home directory to keep the settings in");
    return *path;
}

}  // namespace

RunningProgram::RunningProgram(const BuildSettings& buildSettings, const Surroundings& surroundings)
    : surroundings_(surroundings),
      bundle_(buildSettings.version),
      strings_(buildSettings.localeDirectory),
      fileManager_(userDataDirectory()),
      userDefaults_(requiredSettingsFile(), surroundings.log, clock_),
      settings_(userDefaults_),
      httpClient_({.caFile = buildSettings.caFile}),
      alerts_(strings_),
      application_(mainQueue_, alerts_, surroundings.endDeadline, endLimit),
      reportService_{buildSettings.reportServiceHost, httpClient_, mainQueue_, backgroundQueue_,
                     surroundings.log},
      reportUpdateManager_({settings_, reportService_, fileManager_, clock_, alerts_, strings_}),
      interfaceFiles_(strings_, facts(), menuCommands()),
      importWindow_{reportUpdateManager_,
                    fileManager_,
                    mainQueue_,
                    notificationCenter_,
                    surroundings.distributedNotificationCenter,
                    application_,
                    strings_,
                    surroundings.log},
      metadata_(bundle_, strings_),
      updateCheck_({buildSettings.updateHost, httpClient_, backgroundQueue_, mainQueue_, metadata_, alerts_,
                    strings_, workspace_}),
      delegate_({settings_, interfaceFiles_, alerts_, updateCheck_, importWindow_}) {
    SettingsManger::setSharedManager(&settings_);
    ReportUpdateManager::setSharedManager(&reportUpdateManager_);
    alerts_.setParentWindow([this] { return interfaceFiles_.settingsWindow(); });
}

RunningProgram::~RunningProgram() {
    delegate_.applicationWillTerminate();
    mainQueue_.stop();
    mainQueue_.dropTasks();  // they refer to objects that go before the queue does
    ReportUpdateManager::setSharedManager(nullptr);
    SettingsManger::setSharedManager(nullptr);
}

void RunningProgram::removeLeftOvers() {
    corvane::removeLeftOvers(requiredSettingsFile().parent_path());
    corvane::removeLeftOvers(reportUpdateManager_.reportPath());
}

bool RunningProgram::stopWork(std::chrono::milliseconds limit) {
    httpClient_.stop();
    return backgroundQueue_.stop(limit);
}

ProgramFacts RunningProgram::facts() const {
    const auto information = bundle_.infoDictionary().value();
    return {.name = toQString(*information.at(bundleNameKey).get<std::string>()),
            .version = toQString(*information.at(bundleVersionKey).get<std::string>()),
            .reportsFolder = toQString(reportUpdateManager_.reportPath().native())};
}

MenuCommands RunningProgram::menuCommands() {
    return {.checkForUpdates = [this] { delegate_.checkForUpdates(); },
            .openReportsFolder = [this] { openReportsFolder(); },
            .showAbout = [this] { showAbout(); },
            .quit = [this] { application_.terminate(); }};
}

void RunningProgram::openReportsFolder() {
    const std::filesystem::path& folder = reportUpdateManager_.reportPath();
    if (const std::error_code error = fileManager_.createDirectoryAtPath(folder))
        surroundings_.log.log("cannot make the folder of reports: " + error.message());
    workspace_.openURL(ResourceUrl::ofFile(folder).text());
}

void RunningProgram::showAbout() {
    const ProgramFacts about = facts();
    alerts_.runModal({.style = AlertStyle::Informational,
                      .messageText = toUtf8(about.name) + " " + toUtf8(about.version),
                      .informativeText = strings_.localizedString(
                          "Fetches App Store sales reports for a sales-analysis application.", "About"),
                      .buttons = {},
                      .accessory = {}});
}

}  // namespace corvane
