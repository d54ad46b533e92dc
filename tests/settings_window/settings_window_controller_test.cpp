#include "settings_window/settings_window_controller.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "platform/memory/in_memory_key_value_store.h"
#include "platform/memory/in_memory_log.h"
#include "platform/memory/scripted_alerts.h"
#include "platform/memory/source_language_strings.h"
#include "settings_window/settings_accounts_view_controller.h"
#include "settings_window/settings_general_view_controller.h"
#include "settings_window/settings_preferences_view_controller.h"
#include "support/fake_accounts_view.h"
#include "support/fake_preferences_view.h"
#include "support/fake_settings_window.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class RecordingTab final : public SettingsViewController {
  public:
    RecordingTab(std::string identifier, std::string title, std::vector<std::string>& events)
        : SettingsViewController(std::make_unique<test::FakeTabView>(title), std::move(identifier), title,
                                 title + " icon"),
          events_(events) {}

    void viewDidLoad() override { events_.push_back(toolbarTitle() + " loaded"); }
    void viewWillAppear() override { events_.push_back(toolbarTitle() + " appears"); }
    void viewWillDisappear() override { events_.push_back(toolbarTitle() + " disappears"); }

  private:
    std::vector<std::string>& events_;
};

class SettingsWindowControllerTest : public testing::Test {
  protected:
    SettingsWindowControllerTest()
        : controller([this](SettingsWindowEvents& windowEvents) {
              auto made = std::make_unique<test::FakeSettingsWindow>(windowEvents);
              window = made.get();
              return made;
          }) {}

    SettingsWindowController::Tab tab(const std::string& identifier, const std::string& title) {
        return std::make_shared<RecordingTab>(identifier, title, events);
    }

    void setThreeTabs() {
        controller.setViewControllers({tab("g", "General"), tab("a", "Accounts"), tab("p", "Advanced")});
    }

    std::vector<std::string> events;
    test::FakeSettingsWindow* window = nullptr;
    SettingsWindowController controller;
};

TEST_F(SettingsWindowControllerTest, StartsWithNoTabAndIndexZero) {
    EXPECT_EQ(controller.currentViewController(), nullptr);
    EXPECT_EQ(controller.selectedViewControllerIndex(), 0U);
    EXPECT_THAT(window->labels(), IsEmpty());
    EXPECT_THAT(window->content(), IsEmpty());
}

TEST_F(SettingsWindowControllerTest, ShowsOneToolbarItemForEachTabAndTheFirstTabsView) {
    setThreeTabs();
    controller.setSelectedViewControllerIndex(0);
    EXPECT_THAT(window->labels(), ElementsAre("General", "Accounts", "Advanced"));
    EXPECT_EQ(window->selectedItem(), "g");
    EXPECT_THAT(window->content(), ElementsAre("General"));
    EXPECT_EQ(controller.currentViewController(), controller.viewControllers()[0]);
    EXPECT_EQ(window->items()[1].iconName, "Accounts icon");
}

TEST_F(SettingsWindowControllerTest, PutsTheFirstViewInPlaceBeforeTheSelectedOne) {
    setThreeTabs();
    window->clearHistory();
    controller.setSelectedViewControllerIndex(1);
    EXPECT_EQ(window->selectedItem(), "a");
    EXPECT_THAT(window->content(), ElementsAre("Accounts"));
    EXPECT_THAT(window->history(),
                ElementsAre("remove General", "add General", "remove General", "add Accounts"));
}

TEST_F(SettingsWindowControllerTest, AnIndexOutOfRangeShowsTheFirstTab) {
    setThreeTabs();
    for (const std::size_t index : {std::size_t{3}, std::size_t{4}, static_cast<std::size_t>(-1)}) {
        controller.setSelectedViewControllerIndex(index);
        EXPECT_EQ(controller.selectedViewControllerIndex(), index);
        EXPECT_EQ(window->selectedItem(), "g");
        EXPECT_THAT(window->content(), ElementsAre("General"));
    }
}

TEST_F(SettingsWindowControllerTest, AnIndexSetBeforeTheTabsCounts) {
    controller.setSelectedViewControllerIndex(2);
    setThreeTabs();
    EXPECT_EQ(window->selectedItem(), "p");
    EXPECT_THAT(window->content(), ElementsAre("Advanced"));
}

TEST_F(SettingsWindowControllerTest, RebuildingLeavesOneItemForEachTab) {
    setThreeTabs();
    controller.updateView();
    controller.updateView();
    EXPECT_THAT(window->labels(), ElementsAre("General", "Accounts", "Advanced"));
}

TEST_F(SettingsWindowControllerTest, AClickShowsTheTabAndLeavesTheIndex) {
    setThreeTabs();
    window->click("p");
    EXPECT_THAT(window->content(), ElementsAre("Advanced"));
    EXPECT_EQ(controller.selectedViewControllerIndex(), 0U);
    EXPECT_EQ(controller.currentViewController(), controller.viewControllers()[2]);
}

TEST_F(SettingsWindowControllerTest, AClickOnTheShownTabPutsItsViewInAgain) {
    setThreeTabs();
    window->clearHistory();
    window->click("g");
    EXPECT_THAT(window->history(), ElementsAre("remove General", "add General"));
    EXPECT_EQ(controller.currentViewController(), controller.viewControllers()[0]);
}

TEST_F(SettingsWindowControllerTest, AClickOnAnUnknownItemDoesNothing) {
    setThreeTabs();
    window->clearHistory();
    controller.switchTab("unknown");
    controller.switchTab("G");
    EXPECT_THAT(window->history(), IsEmpty());
}

TEST_F(SettingsWindowControllerTest, OfTabsWithOneIdentifierTheItemShowsTheLastAndAClickTheFirst) {
    controller.setViewControllers({tab("x", "Start"), tab("twin", "Earlier"), tab("twin", "Later")});
    EXPECT_THAT(window->labels(), ElementsAre("Start", "Later", "Later"));
    window->click("twin");
    EXPECT_THAT(window->content(), ElementsAre("Earlier"));
    EXPECT_EQ(controller.settingsViewControllerForIdentifier("twin"), controller.viewControllers()[1]);
    EXPECT_EQ(controller.toolbarItemForItemIdentifier("twin")->label, "Later");
}

TEST_F(SettingsWindowControllerTest, NoTabMeansNoItem) {
    setThreeTabs();
    EXPECT_EQ(controller.toolbarItemForItemIdentifier("unknown"), std::nullopt);
    EXPECT_EQ(controller.settingsViewControllerForIdentifier("unknown"), nullptr);
}

TEST_F(SettingsWindowControllerTest, EveryItemIsSelectable) {
    setThreeTabs();
    EXPECT_THAT(controller.toolbarSelectableItemIdentifiers(), ElementsAre("g", "a", "p"));
}

TEST_F(SettingsWindowControllerTest, SwitchingToNoTabEmptiesTheContent) {
    setThreeTabs();
    controller.switchToViewController(nullptr);
    EXPECT_THAT(window->content(), IsEmpty());
    EXPECT_EQ(controller.currentViewController(), nullptr);
}

TEST_F(SettingsWindowControllerTest, ASecondListOfTabsLeavesTheEarlierViewInPlace) {
    setThreeTabs();
    controller.setViewControllers({tab("n", "New")});
    EXPECT_THAT(window->content(), ElementsAre("General", "New"));
    EXPECT_THAT(window->labels(), ElementsAre("New"));
}

TEST_F(SettingsWindowControllerTest, LoadsEachTabsViewOnceWhenItIsFirstNeeded) {
    setThreeTabs();
    EXPECT_THAT(events, ElementsAre("General loaded"));
    window->click("a");
    window->click("g");
    window->click("a");
    EXPECT_THAT(events, ElementsAre("General loaded", "Accounts loaded"));
}

TEST_F(SettingsWindowControllerTest, TabsAppearAndDisappearOnlyWhileTheWindowIsOnScreen) {
    setThreeTabs();
    window->click("a");
    events.clear();
    window->show();
    EXPECT_THAT(events, ElementsAre("Accounts appears"));
    events.clear();
    window->click("g");
    EXPECT_THAT(events, ElementsAre("Accounts disappears", "General appears"));
    events.clear();
    window->close();
    EXPECT_THAT(events, ElementsAre("General disappears"));
    events.clear();
    window->click("a");
    EXPECT_THAT(events, IsEmpty());
    window->show();
    window->show();
    EXPECT_THAT(events, ElementsAre("Accounts appears"));
}

TEST_F(SettingsWindowControllerTest, AWindowThatIsNotOnScreenHidesNoTab) {
    setThreeTabs();
    SettingsWindowEvents& windowEvents = controller;
    windowEvents.windowWillHide();
    EXPECT_THAT(events, testing::Not(testing::Contains("General disappears")));
    window->show();
    windowEvents.windowWillHide();
    events.clear();
    windowEvents.windowWillHide();
    EXPECT_THAT(events, IsEmpty());
}

TEST_F(SettingsWindowControllerTest, AWindowWithoutTabsIsShownAndHidden) {
    controller.showWindow();
    SettingsWindowEvents& windowEvents = controller;
    windowEvents.windowDidShow();
    windowEvents.windowWillHide();
    EXPECT_EQ(controller.currentViewController(), nullptr);
    setThreeTabs();
    EXPECT_THAT(events, testing::Not(testing::Contains("General appears"))) << "the window is hidden";
}

TEST_F(SettingsWindowControllerTest, TheShownTabDisappearsAndAppearsWhenItIsClickedAgain) {
    setThreeTabs();
    window->show();
    events.clear();
    window->click("g");
    EXPECT_THAT(events, ElementsAre("General disappears", "General appears"));
}

TEST(SettingsWindowControllerDeathTest, AnEmptyListOfTabsIsAFault) {
    SettingsWindowController controller([](SettingsWindowEvents&) { return nullptr; });
    EXPECT_DEATH(controller.setViewControllers({}), "at least one tab");
}

TEST(SettingsWindowControllerWithoutWindowTest, SwitchesTabsWithoutShowingThem) {
    std::vector<std::string> events;
    SettingsWindowController controller([](SettingsWindowEvents&) { return nullptr; });
    controller.setViewControllers({std::make_shared<RecordingTab>("g", "General", events),
                                   std::make_shared<RecordingTab>("a", "Accounts", events)});
    controller.setSelectedViewControllerIndex(1);
    controller.showWindow();
    EXPECT_EQ(controller.currentViewController(), controller.viewControllers()[1]);
    controller.switchTab("g");
    EXPECT_EQ(controller.currentViewController(), controller.viewControllers()[0]);
}

TEST(SettingsTabsTest, HaveTheirIdentity) {
    const SourceLanguageStrings strings;
    InMemoryKeyValueStore defaults;
    SettingsManger settings(defaults);
    ScriptedAlerts alerts;
    NotificationCenter notificationCenter;
    InMemoryLog log;
    const SettingsGeneralViewController general(std::make_unique<test::FakeTabView>("view"), strings);
    const SettingsAccountsViewController accounts(
        std::make_unique<test::FakeAccountsView>(),
        SettingsAccountsViewController::Collaborators{settings, alerts, notificationCenter, strings});
    const SettingsPreferencesViewController advanced(
        std::make_unique<test::FakePreferencesView>(),
        SettingsPreferencesViewController::Collaborators{settings, alerts, strings, log});
    EXPECT_EQ(general.toolbarIdentifier(), "settingsGeneralIdentifier");
    EXPECT_EQ(general.toolbarTitle(), "General");
    EXPECT_EQ(general.toolbarIcon(), "NSImageNamePreferencesGeneral");
    EXPECT_EQ(accounts.toolbarIdentifier(), "settingsAccountsIdentifier");
    EXPECT_EQ(accounts.toolbarTitle(), "Accounts");
    EXPECT_EQ(accounts.toolbarIcon(), "NSImageNameUserAccounts");
    EXPECT_EQ(advanced.toolbarIdentifier(), "settingsAdvancedIdentifier");
    EXPECT_EQ(advanced.toolbarTitle(), "Advanced");
    EXPECT_EQ(advanced.toolbarIcon(), "NSImageNameAdvanced");
}

}  // namespace
}  // namespace corvane
