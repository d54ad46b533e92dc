#include "app/app_delegate.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "support/app_environment.h"

namespace corvane {
namespace {

using testing::AnyOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class AppDelegateTest : public testing::Test, protected test::AppEnvironment {
  protected:
    bool askedForLite(const std::string& payload) {
        requestImport(payload);
        return interfaceFiles.importWindows.back()->controller().isLite();
    }
};

TEST_F(AppDelegateTest, LaunchShowsTheCentredSettingsWindowWithItsThreeTabs) {
    delegate.applicationDidFinishLaunching();

    const test::FakeSettingsWindow& window = *interfaceFiles.settingsWindow;
    EXPECT_THAT(window.labels(), ElementsAre("General", "Accounts", "Advanced"));
    EXPECT_EQ(window.selectedItem(), "settingsGeneralIdentifier");
    EXPECT_THAT(window.content(), ElementsAre("General"));
    EXPECT_TRUE(window.isVisible());
    ASSERT_GE(window.history().size(), 2U);
    EXPECT_EQ(window.history()[window.history().size() - 2], "center");
    EXPECT_EQ(window.history().back(), "show");
}

TEST_F(AppDelegateTest, BeforeTheLaunchThereIsNoWindowAndNobodyListens) {
    addAccount("1");
    EXPECT_EQ(delegate.settingsWindowController(), nullptr);
    EXPECT_EQ(delegate.updateWindow(), nullptr);
    EXPECT_FALSE(delegate.applicationShouldHandleReopen());
    requestImport();
    EXPECT_THAT(interfaceFiles.importWindows, IsEmpty());
}

TEST_F(AppDelegateTest, AMissingTabIsFatal) {
    for (const char* tab : {"General", "Accounts", "Advanced"}) {
        interfaceFiles.missing = tab;
        EXPECT_DEATH(delegate.applicationDidFinishLaunching(), "ViewController is missing") << tab;
    }
}

TEST_F(AppDelegateTest, ReopeningShowsTheClosedWindowAgain) {
    delegate.applicationDidFinishLaunching();
    interfaceFiles.settingsWindow->close();
    EXPECT_FALSE(delegate.applicationShouldHandleReopen());
    EXPECT_TRUE(interfaceFiles.settingsWindow->isVisible());
}

TEST_F(AppDelegateTest, AnImportRequestOpensAFixedSizeSheetOnTheSettingsWindow) {
    addAccount("1");
    delegate.applicationDidFinishLaunching();
    requestImport();

    ASSERT_EQ(interfaceFiles.importWindows.size(), 1U);
    const auto& opened = interfaceFiles.importWindows[0];
    EXPECT_THAT(interfaceFiles.settingsWindow->sheets(), ElementsAre(opened));
    EXPECT_EQ(delegate.updateWindow(), opened);
    EXPECT_FALSE(opened->isResizable());
    EXPECT_TRUE(opened->view().isAnimating);
}

TEST_F(AppDelegateTest, ReadsTheEditionFromTheRequest) {
    addAccount("1");
    delegate.applicationDidFinishLaunching();
    const struct {
        const char* payload;
        bool isLite;
    } requests[] = {
        {R"({"isLite": true})", true},
        {R"({"isLite": false})", false},
        {R"({"isLite": 1})", true},
        {R"({"isLite": 2})", true},
        {R"({"isLite": -1})", true},
        {R"({"isLite": 0.5})", true},
        {R"({"isLite": 18446744073709551616})", true},
        {R"({"isLite": 0})", false},
        {R"({"isLite": 0.0})", false},
        {R"({"isLite": null})", false},
        {R"({"isLite": "true"})", false},
        {R"({"isLite": "1"})", false},
        {R"({"isLite": []})", false},
        {R"({"isLite": {"isLite": true}})", false},
        {R"({"islite": true})", false},
        {R"({"other": 1, "isLite": true, "more": [1, 2]})", true},
        {R"({"isLite": true, "isLite": false})", true},
        {R"({"isLite": true,})", true},
        {R"({})", false},
        {R"([{"isLite": true}])", false},
        {R"(true)", false},
        {R"(not JSON)", false},
        {R"({"isLite": true)", false},
        {"", false},
    };
    for (const auto& request : requests)
        EXPECT_EQ(askedForLite(request.payload), request.isLite) << request.payload;
    EXPECT_EQ(interfaceFiles.importWindows.size(), std::size(requests));
}

TEST_F(AppDelegateTest, ARequestWithoutATextAsksForTheFullEdition) {
    addAccount("1");
    delegate.applicationDidFinishLaunching();
    requestImport();
    requestImport(ForeignObject{"42"});
    ASSERT_EQ(interfaceFiles.importWindows.size(), 2U);
    for (const auto& window : interfaceFiles.importWindows)
        EXPECT_FALSE(window->controller().isLite());
}

TEST_F(AppDelegateTest, LogsTheRequestAndTheOptionsThatItCouldRead) {
    delegate.applicationDidFinishLaunching();
    requestImport(std::string(R"({"isLite":true})"));
    requestImport(std::string("not JSON"));
    requestImport();

    const auto lines = log.lines();
    ASSERT_EQ(lines.size(), 4U);
    EXPECT_THAT(lines[0], StartsWith("corvaneReloadData:"));
    EXPECT_THAT(lines[0], HasSubstr("kNotificationCorvaneReloadData"));
    EXPECT_THAT(lines[0], HasSubstr(R"({"isLite":true})"));
    EXPECT_THAT(lines[1], StartsWith("options:"));
    EXPECT_THAT(lines[1], HasSubstr("isLite = 1"));
    EXPECT_THAT(lines[2], StartsWith("corvaneReloadData:"));
    EXPECT_THAT(lines[3], StartsWith("corvaneReloadData:"));
}

TEST_F(AppDelegateTest, CutsLongRequestsInTheLog) {
    addAccount("1");
    delegate.applicationDidFinishLaunching();
    requestImport(R"({"isLite": true, "long": ")" + std::string(1'000'000, 'x') + "\"}");
    for (const std::string& line : log.lines())
        EXPECT_LT(line.size(), 3000U);
    EXPECT_TRUE(interfaceFiles.importWindows.back()->controller().isLite());
}

TEST_F(AppDelegateTest, WithoutAnAccountListARequestIsSilent) {
    delegate.applicationDidFinishLaunching();
    requestImport();
    EXPECT_THAT(alerts.shown(), IsEmpty());
    EXPECT_THAT(interfaceFiles.importWindows, IsEmpty());
}

TEST_F(AppDelegateTest, WithAnEmptyAccountListARequestAsksForAnAccount) {
    settings.setITunesAccounts(ITunesAccountList{});
    delegate.applicationDidFinishLaunching();
    requestImport();

    ASSERT_EQ(alerts.shown().size(), 1U);
    EXPECT_EQ(alerts.shown()[0].messageText, "No iTunes-Connect-Accounts");
    EXPECT_EQ(alerts.shown()[0].informativeText, "Please enter your iTunes-Connect-Account.");
    ASSERT_EQ(alerts.shown()[0].buttons.size(), 1U);
    EXPECT_EQ(alerts.shown()[0].buttons[0].title, "Close");
    EXPECT_THAT(interfaceFiles.importWindows, IsEmpty());
    EXPECT_EQ(delegate.updateWindow(), nullptr);
}

TEST_F(AppDelegateTest, AMissingImportWindowSkipsTheImportSilently) {
    addAccount("1");
    interfaceFiles.missing = "ReportUpdateView";
    delegate.applicationDidFinishLaunching();
    requestImport();
    EXPECT_THAT(interfaceFiles.importWindows, IsEmpty());
    EXPECT_THAT(alerts.shown(), IsEmpty());
}

TEST_F(AppDelegateTest, WithoutASettingsWindowTheImportWindowIsMadeButNotShown) {
    addAccount("1");
    interfaceFiles.missing = "SettingsWindow";
    delegate.applicationDidFinishLaunching();
    requestImport();
    ASSERT_EQ(interfaceFiles.importWindows.size(), 1U);
    EXPECT_EQ(delegate.updateWindow(), interfaceFiles.importWindows[0]);
    EXPECT_FALSE(interfaceFiles.importWindows[0]->isOnWindow());
}

TEST_F(AppDelegateTest, ASecondRequestOpensASecondWindowAndBothRunsEnd) {
    addAccount("1");
    fillCache([](const std::string& key) { return key == "2015"; });
    delegate.applicationDidFinishLaunching();
    requestImport();
    requestImport();

    ASSERT_EQ(interfaceFiles.importWindows.size(), 2U);
    EXPECT_EQ(delegate.updateWindow(), interfaceFiles.importWindows[1]);
    for (const auto& window : interfaceFiles.importWindows)
        window->appear();
    runToEnd();
    for (const auto& window : interfaceFiles.importWindows)
        EXPECT_FALSE(window->isOnWindow());
    EXPECT_EQ(distributedCenter.posted().size(), 2U);
}

TEST_F(AppDelegateTest, PublishesTheNameOfTheRequest) {
    EXPECT_EQ(delegate.kReloadDataDistributedNotification, "kNotificationCorvaneReloadData");
}

}  // namespace
}  // namespace corvane
