#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "settings_window/settings_view_controller.h"
#include "settings_window/settings_window_view.h"

namespace corvane {

/// The settings window: one toolbar item for each tab, and one tab's view in the content area. Main thread
/// only.
class SettingsWindowController final : public SettingsWindowEvents {
  public:
    using Tab = std::shared_ptr<SettingsViewController>;
    using WindowLoader = std::function<std::unique_ptr<SettingsWindowView>(SettingsWindowEvents& events)>;

    /// Loads the window. A controller whose window could not be loaded works without showing anything.
    explicit SettingsWindowController(const WindowLoader& loadWindow);

    SettingsWindowController(const SettingsWindowController&) = delete;
    SettingsWindowController& operator=(const SettingsWindowController&) = delete;

    /// Null when it could not be loaded.
    SettingsWindowView* window() const { return window_.get(); }
    void showWindow();

    /// The tabs in the order of their toolbar items. An empty list is a fault.
    void setViewControllers(std::vector<Tab> tabs);
    const std::vector<Tab>& viewControllers() const { return viewControllers_; }

    /// The tab to show; one out of range shows the first tab. A click on the toolbar does not change it.
    void setSelectedViewControllerIndex(std::size_t index);
    std::size_t selectedViewControllerIndex() const { return selectedViewControllerIndex_; }

    /// The tab whose view is in the content area; null for none.
    const Tab& currentViewController() const { return currentViewController_; }
    void setCurrentViewController(Tab tab) { currentViewController_ = std::move(tab); }

    /// Builds the toolbar anew and shows the selected tab.
    void updateView();

    /// Replaces the shown tab's view; null shows none. The tab that is shown already is taken out and put in
    /// again.
    void switchToViewController(const Tab& tab);

    /// The toolbar item of the last tab with that identifier; absent without one.
    std::optional<ToolbarItem> toolbarItemForItemIdentifier(const std::string& identifier) const;
    std::vector<std::string> toolbarSelectableItemIdentifiers() const;

    /// A click on the toolbar item of that identifier: shows its tab, if there is one.
    void switchTab(const std::string& itemIdentifier);

    /// The first tab with that identifier; null without one.
    Tab settingsViewControllerForIdentifier(const std::string& identifier) const;

    void toolbarItemClicked(const std::string& identifier) override { switchTab(identifier); }
    void windowDidShow() override;
    void windowWillHide() override;

  private:
    void rebuildToolbar();
    void selectToolbarItem(const SettingsViewController& tab);
    bool isInContentArea(const Tab& tab) const { return tabsInContentArea_.contains(tab.get()); }

    std::vector<Tab> viewControllers_;
    std::size_t selectedViewControllerIndex_ = 0;
    Tab currentViewController_;
    std::set<const SettingsViewController*> loadedTabs_;
    /// Usually the current tab alone; a list of tabs set later leaves the earlier one's view where it is.
    std::set<const SettingsViewController*> tabsInContentArea_;
    bool isOnScreen_ = false;
    std::unique_ptr<SettingsWindowView> window_;  // goes first: it must not outlive the tabs' views
};

}  // namespace corvane
