#include "settings_window/settings_preferences_view_controller.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/memory/in_memory_key_value_store.h"
#include "platform/memory/in_memory_log.h"
#include "platform/memory/scripted_alerts.h"
#include "platform/memory/source_language_strings.h"
#include "support/fake_preferences_view.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class SettingsPreferencesViewControllerTest : public testing::Test {
  protected:
    SettingsPreferencesViewControllerTest() {
        auto made = std::make_unique<test::FakePreferencesView>();
        view = made.get();
        controller = std::make_unique<SettingsPreferencesViewController>(
            std::move(made),
            SettingsPreferencesViewController::Collaborators{settings, alerts, strings, log});
        controller->viewDidLoad();
    }

    void fillSettings() {
        settings.setITunesAccounts(ITunesAccountList{std::make_shared<ITunesAccount>("1", "One")});
        settings.setReportsDownloadedCache(ReportKeys{"20150104"});
        settings.setReportsDownloadedLiteCache(ReportKeys{});
    }

    void reset(int answer) {
        alerts.prepareAnswer({.code = answer, .accessoryText = {}});
        view->clickReset();
    }

    InMemoryKeyValueStore defaults;
    SettingsManger settings{defaults};
    ScriptedAlerts alerts;
    SourceLanguageStrings strings;
    InMemoryLog log;
    test::FakePreferencesView* view = nullptr;
    std::unique_ptr<SettingsPreferencesViewController> controller;
};

TEST_F(SettingsPreferencesViewControllerTest, AsksWithTheQuestionBelowTheExplanation) {
    reset(1000);
    ASSERT_THAT(alerts.shown(), SizeIs(1));
    const Alert& alert = alerts.shown()[0];
    EXPECT_EQ(alert.style, AlertStyle::Critical);
    EXPECT_EQ(alert.messageText,
              "Resetting the cache causes the tool to download all available reports again.");
    EXPECT_EQ(alert.informativeText, "Do you want to reset the cache?");
    ASSERT_THAT(alert.buttons, SizeIs(2));
    EXPECT_EQ(alert.buttons[0].title, "Cancel");
    EXPECT_TRUE(alert.buttons[0].isCancel);
    EXPECT_EQ(alert.buttons[1].title, "Reset Cache");
    EXPECT_FALSE(alert.buttons[1].isCancel);
    EXPECT_FALSE(alert.accessory);
}

TEST_F(SettingsPreferencesViewControllerTest, TheSecondButtonRemovesBothCachesAndNothingElse) {
    fillSettings();
    reset(1001);
    EXPECT_EQ(settings.reportsDownloadedCache(), std::nullopt);
    EXPECT_EQ(settings.reportsDownloadedLiteCache(), std::nullopt);
    EXPECT_FALSE(defaults.stored().contains("settingsKeyReportsDownloadedCache"));
    EXPECT_FALSE(defaults.stored().contains("settingsKeyReportsDownloadedLiteCache"));
    EXPECT_THAT(*settings.iTunesAccounts(), SizeIs(1));
    EXPECT_TRUE(defaults.stored().contains("settingsKeyItunesAccounts"));
    EXPECT_THAT(log.lines(), ElementsAre("reset cache"));
}

TEST_F(SettingsPreferencesViewControllerTest, EveryOtherAnswerLeavesBothCaches) {
    fillSettings();
    const int writesBefore = defaults.synchronizeCount();
    for (const int answer : {1000, 1002, 0, 1, -1000})
        reset(answer);
    EXPECT_EQ(settings.reportsDownloadedCache(), ReportKeys{"20150104"});
    EXPECT_EQ(settings.reportsDownloadedLiteCache(), ReportKeys{});
    EXPECT_EQ(defaults.synchronizeCount(), writesBefore);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(SettingsPreferencesViewControllerTest, ResettingTwiceIsNoError) {
    reset(1001);
    reset(1001);
    EXPECT_EQ(settings.reportsDownloadedCache(), std::nullopt);
    EXPECT_EQ(settings.reportsDownloadedLiteCache(), std::nullopt);
    EXPECT_THAT(log.lines(), ElementsAre("reset cache", "reset cache"));
}

TEST_F(SettingsPreferencesViewControllerTest, LogsBeforeItRemoves) {
    class Watch final : public Log {
      public:
        explicit Watch(const SettingsManger& settings) : settings_(settings) {}
        void log(std::string_view /*text*/) override {
            hadCache = settings_.reportsDownloadedCache().has_value();
        }
        bool hadCache = false;

      private:
        const SettingsManger& settings_;
    };
    fillSettings();
    Watch watch(settings);
    auto made = std::make_unique<test::FakePreferencesView>();
    SettingsPreferencesViewController watched(
        std::move(made), SettingsPreferencesViewController::Collaborators{settings, alerts, strings, watch});
    alerts.prepareAnswer({.code = 1001, .accessoryText = {}});
    watched.resetCache();
    EXPECT_TRUE(watch.hadCache);
    EXPECT_EQ(settings.reportsDownloadedCache(), std::nullopt);
}

}  // namespace
}  // namespace corvane
