#include "app/update_check.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "support/app_environment.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class UpdateCheckTest : public testing::Test, protected test::AppEnvironment {
  protected:
    void publish(const std::string& body, int statusCode = 200) {
        updateFeed = [body, statusCode](const HttpRequest& request) {
            return HttpAnswer{
                .response = HttpResponse{.statusCode = statusCode, .url = request.url, .headers = {}},
                .body = toBytes(body),
                .errorDescription = {}};
        };
    }

    void publishVersion(const std::string& version, const std::string& notes = "Notes",
                        const std::string& link = "https://example.com/download") {
        publish(nlohmann::json{{"version", version}, {"updateNotes", notes}, {"downloadLink", link}}.dump());
    }

    void setCurrentVersion(const std::string& version) {
        bundle.setInfoDictionary(InMemoryBundle::Information{{bundleVersionKey, version}});
    }

    void check() {
        delegate.checkForUpdates();
        backgroundQueue.runAll();
        mainQueue.runDueTasks();
    }

    void answerNext(int code) { alerts.prepareAnswer({.code = code, .accessoryText = {}}); }
};

TEST_F(UpdateCheckTest, OffersANewerVersion) {
    publishVersion("1.2", "First\nSecond");
    check();
    ASSERT_THAT(alerts.shown(), SizeIs(1));
    const Alert& alert = alerts.shown()[0];
    EXPECT_EQ(alert.style, AlertStyle::Warning);
    EXPECT_EQ(alert.messageText, "Update available (Version 1.2)");
    EXPECT_EQ(alert.informativeText,
              "Please download the new version. It includes the following changes:\n\nFirst\nSecond");
    ASSERT_THAT(alert.buttons, SizeIs(2));
    EXPECT_EQ(alert.buttons[0].title, "Download");
    EXPECT_FALSE(alert.buttons[0].isCancel);
    EXPECT_EQ(alert.buttons[1].title, "Cancel");
    EXPECT_TRUE(alert.buttons[1].isCancel);
    EXPECT_FALSE(alert.accessory);
    EXPECT_THAT(workspace.openedURLs(), ElementsAre("https://example.com/download"));
}

TEST_F(UpdateCheckTest, ComparesThePublishedVersionWithThisOne) {
    const struct {
        const char* published;
        const char* current;
        bool isOffered;
    } rows[] = {
        {"1.2", "1.1", true},   {"1.1", "1.1", false},   {"1.0", "1.1", false},
        {"1.10", "1.9", true},  {"1.9", "1.10", false},  {"1.01", "1.1", true},
        {"1.0.0", "1.0", true}, {"1.0", "1.0.0", false}, {"1.1", "1.01", true},
        {"2", "1.9.9", true},   {"1.1b", "1.1", false},  {"1.0b", "1.0", true},
        {"", "1.1", false},     {"beta", "0", true},     {"beta", "beta", false},
        {" 1.1", "1.1", false}, {"1.1 ", "1.1", false},  {"+1.1", "1.1", true},
        {"-1", "0", false},     {"1.1", "", true},       {"9223372036854775808", "1", false},
    };
    for (const auto& row : rows) {
        const std::size_t shownBefore = alerts.shown().size();
        setCurrentVersion(row.current);
        publishVersion(row.published);
        check();
        EXPECT_EQ(alerts.shown().size() > shownBefore, row.isOffered)
            << '"' << row.published << "\" against \"" << row.current << '"';
    }
}

TEST_F(UpdateCheckTest, NeverReadsWhatItFillsInAsAFormat) {
    publishVersion("2.%@.%i", "100% %@ %i %% %1$@\n\nä");
    check();
    ASSERT_THAT(alerts.shown(), SizeIs(1));
    EXPECT_EQ(alerts.shown()[0].messageText, "Update available (Version 2.%@.%i)");
    EXPECT_EQ(alerts.shown()[0].informativeText,
              "Please download the new version. It includes the following changes:\n\n100% %@ %i %% "
              "%1$@\n\nä");
}

TEST_F(UpdateCheckTest, HandsLongNotesOnWhole) {
    const std::string notes(500'000, 'n');
    publishVersion("2", notes);
    check();
    ASSERT_THAT(alerts.shown(), SizeIs(1));
    EXPECT_TRUE(alerts.shown()[0].informativeText.ends_with("\n\n" + notes));
}

TEST_F(UpdateCheckTest, OnlyTheFirstButtonOpensTheLink) {
    publishVersion("2");
    for (const int code : {1001, 1002, 0, -1}) {
        answerNext(code);
        check();
    }
    EXPECT_THAT(alerts.shown(), SizeIs(4));
    EXPECT_THAT(workspace.openedURLs(), IsEmpty());
}

TEST_F(UpdateCheckTest, ALinkThatIsNoURLOpensNothing) {
    for (const char* link : {"", "example.com", "http://example.com/a b", "http://example.com/ä", "$(reboot)",
                             "/bin/sh", "https://example.com\n"}) {
        publishVersion("2", "Notes", link);
        check();
    }
    EXPECT_THAT(alerts.shown(), SizeIs(7));
    EXPECT_THAT(workspace.openedURLs(), IsEmpty());
}

TEST_F(UpdateCheckTest, WhatCannotBeReadIsPassedOverInSilence) {
    publish("");
    check();
    publish("<html>maintenance</html>");
    check();
    publish("[]");
    check();
    publish(R"({"error": "not found"})", 404);
    check();
    updateFeed = [](const HttpRequest&) { return test::answerWithTransportFailure(); };
    check();
    EXPECT_THAT(alerts.shown(), IsEmpty());
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_THAT(updateClient.requests(), SizeIs(5));
    EXPECT_EQ(mainQueue.pendingCount(), 0U);
}

TEST_F(UpdateCheckTest, AnObjectWithoutOneOfTheTextsIsFatalEvenWhenItIsOld) {
    publish(R"({"version": "0.1", "updateNotes": "Notes"})");
    EXPECT_DEATH(check(), "downloadLink");
}

TEST_F(UpdateCheckTest, ABundleWithoutAVersionIsFatalOnceThereIsAFeed) {
    bundle.setInfoDictionary(InMemoryBundle::Information{});
    check();
    publishVersion("2");
    EXPECT_DEATH(check(), "CFBundleVersion");
}

TEST_F(UpdateCheckTest, FetchesOnTheBackgroundQueueAndShowsOnTheMainQueue) {
    publishVersion("2");
    delegate.checkForUpdates();
    EXPECT_THAT(updateClient.requests(), IsEmpty());
    EXPECT_EQ(backgroundQueue.pendingCount(), 1U);
    EXPECT_EQ(mainQueue.pendingCount(), 0U);
    backgroundQueue.runAll();
    EXPECT_THAT(updateClient.requests(), SizeIs(1));
    EXPECT_EQ(updateClient.requests()[0].url, "http://updates.example:8080/Plovance/update.json");
    EXPECT_THAT(alerts.shown(), IsEmpty());
    mainQueue.runDueTasks();
    EXPECT_THAT(alerts.shown(), SizeIs(1));
}

TEST_F(UpdateCheckTest, TwoChecksAtOnceShowTheirAlertsOneAfterTheOther) {
    publishVersion("2");
    int open = 0;
    int mostOpen = 0;
    alerts.whileOpen([&](const Alert&) {
        mostOpen = std::max(mostOpen, ++open);
        mainQueue.runDueTasks();
        --open;
    });
    delegate.checkForUpdates();
    delegate.checkForUpdates();
    backgroundQueue.runAll();
    mainQueue.runDueTasks();
    EXPECT_THAT(alerts.shown(), SizeIs(2));
    EXPECT_EQ(mostOpen, 1);
    EXPECT_THAT(workspace.openedURLs(), SizeIs(2));
}

TEST_F(UpdateCheckTest, RemembersNothingBetweenChecks) {
    publishVersion("2");
    answerNext(1001);
    check();
    check();
    EXPECT_THAT(alerts.shown(), SizeIs(2));
    EXPECT_THAT(updateClient.requests(), SizeIs(2));
}

TEST_F(UpdateCheckTest, TheDelegateTakesAFeedThatWasReadElsewhere) {
    delegate.parsedUpdateFile("1.1", "Notes", "https://example.com/");
    EXPECT_THAT(alerts.shown(), IsEmpty());
    delegate.parsedUpdateFile("1.2", "Notes", "https://example.com/");
    EXPECT_THAT(alerts.shown(), SizeIs(1));
    EXPECT_THAT(workspace.openedURLs(), ElementsAre("https://example.com/"));
}

TEST_F(UpdateCheckTest, TheLaunchStartsOneCheckAndDoesNotWaitForIt) {
    publishVersion("2");
    delegate.applicationDidFinishLaunching();
    EXPECT_TRUE(interfaceFiles.settingsWindow->isVisible());
    EXPECT_EQ(backgroundQueue.pendingCount(), 1U);
    EXPECT_THAT(updateClient.requests(), IsEmpty());
    runToEnd();
    EXPECT_THAT(updateClient.requests(), SizeIs(1));
    EXPECT_THAT(alerts.shown(), SizeIs(1));
}

}  // namespace
}  // namespace corvane
