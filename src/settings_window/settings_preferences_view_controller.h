#pragma once

#include <memory>

#include "platform/alerts.h"
#include "platform/localized_strings.h"
#include "platform/log.h"
#include "settings/settings_manger.h"
#include "settings_window/preferences_view.h"
#include "settings_window/settings_view_controller.h"

namespace corvane {

/// The Advanced tab: makes the program forget which reports it has fetched. Main thread only.
class SettingsPreferencesViewController final : public SettingsViewController, public PreferencesViewEvents {
  public:
    /// All of them outlive the controller.
    struct Collaborators {
        SettingsManger& settings;
        Alerts& alerts;
        const LocalizedStrings& strings;
        Log& log;
    };

    SettingsPreferencesViewController(std::unique_ptr<PreferencesView> view,
                                      const Collaborators& collaborators);
    ~SettingsPreferencesViewController() override;

    void viewDidLoad() override;

    /// Asks first, then removes the caches of both editions. A run that is under way writes its cache again
    /// when it ends.
    void resetCache() override;

  private:
    const Collaborators with_;
    PreferencesView& view_;
};

}  // namespace corvane
