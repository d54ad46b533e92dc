#include "settings_window/settings_preferences_view_controller.h"

#include <optional>
#include <utility>

namespace corvane {

SettingsPreferencesViewController::SettingsPreferencesViewController(std::unique_ptr<PreferencesView> view,
                                                                     const Collaborators& collaborators)
    : SettingsViewController(std::move(view), "settingsAdvancedIdentifier",
                             collaborators.strings.localizedString("Advanced", "Settings Toolbar Item"),
                             "NSImageNameAdvanced"),
      with_(collaborators),
      view_(static_cast<PreferencesView&>(SettingsViewController::view())) {}

SettingsPreferencesViewController::~SettingsPreferencesViewController() {
    view_.setEvents(nullptr);
}

void SettingsPreferencesViewController::viewDidLoad() {
    view_.setEvents(this);
}

void SettingsPreferencesViewController::resetCache() {
    const LocalizedStrings& strings = with_.strings;
    // The other way round than elsewhere: the explanation is the headline, the question the smaller text.
    const AlertAnswer answer = with_.alerts.runModal(
        {.style = AlertStyle::Critical,
         .messageText = strings.localizedString(
             "Resetting the cache causes the tool to download all available reports again.", "Confirm reset"),
         .informativeText = strings.localizedString("Do you want to reset the cache?", "Confirm reset"),
         .buttons = {{.title = strings.localizedString("Cancel", "Confirm reset"), .isCancel = true},
                     {.title = strings.localizedString("Reset Cache", "Confirm reset")}},
         .accessory = {}});
    if (answer.code != alertSecondButtonReturn)
        return;
    with_.log.log("reset cache");
    with_.settings.setReportsDownloadedCache(std::nullopt);
    with_.settings.setReportsDownloadedLiteCache(std::nullopt);
}

}  // namespace corvane
