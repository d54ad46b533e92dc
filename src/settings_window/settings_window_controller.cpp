#include "settings_window/settings_window_controller.h"

#include <algorithm>
#include <utility>

#include "platform/fatal_error.h"

namespace corvane {

SettingsWindowController::SettingsWindowController(const WindowLoader& loadWindow)
    : window_(loadWindow(*this)) {
    updateView();
}

void SettingsWindowController::showWindow() {
    if (window_)
        window_->show();
}

void SettingsWindowController::setViewControllers(std::vector<Tab> tabs) {
    if (tabs.empty())
        fatalError("the settings window needs at least one tab");
    viewControllers_ = std::move(tabs);
    currentViewController_ = viewControllers_.front();
    updateView();
}

void SettingsWindowController::setSelectedViewControllerIndex(std::size_t index) {
    selectedViewControllerIndex_ = index;
    updateView();
}

void SettingsWindowController::updateView() {
    // The first tab always goes in before the selected one, and stays when the selection is out of range.
    if (!viewControllers_.empty())
        switchToViewController(viewControllers_.front());
    rebuildToolbar();
    if (selectedViewControllerIndex_ < viewControllers_.size()) {
        const Tab& selected = viewControllers_[selectedViewControllerIndex_];
        selectToolbarItem(*selected);
        switchToViewController(selected);
    } else if (!viewControllers_.empty()) {
        selectToolbarItem(*viewControllers_.front());
    }
}

void SettingsWindowController::rebuildToolbar() {
    if (!window_)
        return;
    for (std::size_t count = window_->toolbarItemCount(); count > 0; --count)
        window_->removeToolbarItem(0);
    for (std::size_t i = 0; i < viewControllers_.size(); ++i) {
        if (const auto item = toolbarItemForItemIdentifier(viewControllers_[i]->toolbarIdentifier()))
            window_->insertToolbarItem(*item, i);
    }
}

void SettingsWindowController::selectToolbarItem(const SettingsViewController& tab) {
    if (window_)
        window_->setSelectedToolbarItem(tab.toolbarIdentifier());
}

void SettingsWindowController::switchToViewController(const Tab& tab) {
    if (const Tab previous = std::exchange(currentViewController_, nullptr);
        previous && isInContentArea(previous)) {
        if (isOnScreen_)
            previous->viewWillDisappear();
        window_->removeContent(previous->view());
        tabsInContentArea_.erase(previous.get());
    }
    if (!tab)
        return;
    if (loadedTabs_.insert(tab.get()).second)
        tab->viewDidLoad();
    if (window_) {
        if (isOnScreen_)
            tab->viewWillAppear();
        window_->addContent(tab->view());
        tabsInContentArea_.insert(tab.get());
    }
    currentViewController_ = tab;
}

std::optional<ToolbarItem> SettingsWindowController::toolbarItemForItemIdentifier(
    const std::string& identifier) const {
    std::optional<ToolbarItem> item;
    for (const Tab& tab : viewControllers_) {
        if (tab->toolbarIdentifier() == identifier)
            item = ToolbarItem{identifier, tab->toolbarTitle(), tab->toolbarIcon()};
    }
    return item;
}

std::vector<std::string> SettingsWindowController::toolbarSelectableItemIdentifiers() const {
    std::vector<std::string> identifiers;
    for (const Tab& tab : viewControllers_)
        identifiers.push_back(tab->toolbarIdentifier());
    return identifiers;
}

void SettingsWindowController::switchTab(const std::string& itemIdentifier) {
    if (const Tab tab = settingsViewControllerForIdentifier(itemIdentifier))
        switchToViewController(tab);
}

SettingsWindowController::Tab SettingsWindowController::settingsViewControllerForIdentifier(
    const std::string& identifier) const {
    const auto found = std::find_if(viewControllers_.begin(), viewControllers_.end(),
                                    [&](const Tab& tab) { return tab->toolbarIdentifier() == identifier; });
    return found == viewControllers_.end() ? nullptr : *found;
}

void SettingsWindowController::windowDidShow() {
    if (std::exchange(isOnScreen_, true))
        return;
    if (currentViewController_)
        currentViewController_->viewWillAppear();
}

void SettingsWindowController::windowWillHide() {
    if (!std::exchange(isOnScreen_, false))
        return;
    if (currentViewController_)
        currentViewController_->viewWillDisappear();
}

}  // namespace corvane
