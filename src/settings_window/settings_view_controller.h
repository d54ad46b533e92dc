#pragma once

#include <memory>
#include <string>

#include "settings_window/settings_window_view.h"

namespace corvane {

/// The base of every settings tab: its toolbar identity and its view. Main thread only.
class SettingsViewController {
  public:
    SettingsViewController(std::unique_ptr<TabView> view, std::string toolbarIdentifier,
                           std::string toolbarTitle, std::string toolbarIcon);
    virtual ~SettingsViewController() = default;

    SettingsViewController(const SettingsViewController&) = delete;
    SettingsViewController& operator=(const SettingsViewController&) = delete;

    /// The platform's name of the toolbar item's image.
    const std::string& toolbarIcon() const { return toolbarIcon_; }
    void setToolbarIcon(std::string icon) { toolbarIcon_ = std::move(icon); }
    /// The toolbar item's label, in the user's language.
    const std::string& toolbarTitle() const { return toolbarTitle_; }
    void setToolbarTitle(std::string title) { toolbarTitle_ = std::move(title); }
    /// The key by which the tab is found; never shown.
    const std::string& toolbarIdentifier() const { return toolbarIdentifier_; }
    void setToolbarIdentifier(std::string identifier) { toolbarIdentifier_ = std::move(identifier); }

    TabView& view() { return *view_; }

    /// Once, before the view is used for the first time.
    virtual void viewDidLoad() {}
    /// Each time that the view is about to come on screen, or to leave it.
    virtual void viewWillAppear() {}
    virtual void viewWillDisappear() {}

  private:
    std::unique_ptr<TabView> view_;
    std::string toolbarIdentifier_;
    std::string toolbarTitle_;
    std::string toolbarIcon_;
};

}  // namespace corvane
