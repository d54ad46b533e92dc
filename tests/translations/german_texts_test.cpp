#include <gmock/gmock.h>

#include <clocale>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "platform/system/gettext_strings.h"
#include "support/app_environment.h"

namespace corvane {
namespace {

using namespace std::chrono_literals;
using testing::Contains;
using testing::ElementsAre;
using testing::SizeIs;

/// The program for a German user, with the translation that this build has made. The whole locale is German
/// here, so that a number that went through the C library would show a comma.
class GermanTextsTest : public testing::Test, protected test::AppEnvironment {
  protected:
    GermanTextsTest() : AppEnvironment(std::make_unique<GettextStrings>(LOCALE_FOLDER)) {
        EXPECT_NE(std::setlocale(LC_ALL, ""), nullptr) << "the tests' locale is missing";
        EXPECT_STREQ(std::localeconv()->decimal_point, ",");
    }
    ~GermanTextsTest() override { std::setlocale(LC_ALL, "C"); }

    std::string german(const char* key) { return strings.localizedString(key, "any"); }

    void publishVersion(const std::string& version) {
        const std::string body = nlohmann::json{
            {"version", version},
            {"updateNotes", "100 %@"},
            {"downloadLink",
             "https://example.com/"}}.dump();
        updateFeed = [body](const HttpRequest& request) {
            return HttpAnswer{.response = HttpResponse{.statusCode = 200, .url = request.url, .headers = {}},
                              .body = toBytes(body),
                              .errorDescription = {}};
        };
    }
    void checkForUpdates() {
        delegate.checkForUpdates();
        backgroundQueue.runAll();
        mainQueue.runDueTasks();
    }
};

TEST_F(GermanTextsTest, AKeyMayBeMisspeltItsTranslationIsNot) {
    EXPECT_EQ(german("The vendor ID must be a numberic string."),
              "Die Anbieter-ID darf nur aus Ziffern bestehen.");
}

TEST_F(GermanTextsTest, NameAndVersionAreTheSameInEveryLanguage) {
    EXPECT_EQ(metadata.longAppName(), "Tessaly");
    EXPECT_EQ(metadata.appVersion(), "1.1");
}

TEST_F(GermanTextsTest, TheImportWindowCountsInGermanWithADecimalPoint) {
    addAccount("1");
    addAccount("2");
    fillCache([](const std::string& key) { return key >= "20150615" && key <= "20150617"; });
    settings.setReportsDownloadedCache([keys = *settings.reportsDownloadedCache()]() mutable {
        std::erase(keys, "2015");
        return keys;
    }());
    service = [this](const HttpRequest& request) {
        mainQueue.advance(100ms);
        return test::answerWithItsReport(request);
    };
    delegate.applicationDidFinishLaunching();
    requestImport();
    test::FakeImportWindow& window = *interfaceFiles.importWindows.back();
    window.appear();
    EXPECT_THAT(window.view().descriptions, ElementsAre("Import wird vorbereitet..."));
    runToEnd();
    EXPECT_THAT(window.view().descriptions, Contains("3 von 8 Berichten geladen"));
    EXPECT_THAT(window.view().progressTexts, Contains("37.50 % abgeschlossen"));
}

TEST_F(GermanTextsTest, AnAlertIsGermanAsAWhole) {
    settings.setITunesAccounts(ITunesAccountList{});
    delegate.applicationDidFinishLaunching();
    requestImport();
    ASSERT_THAT(alerts.shown(), SizeIs(1));
    EXPECT_EQ(alerts.shown()[0].messageText, "Keine iTunes-Connect-Konten");
    EXPECT_EQ(alerts.shown()[0].informativeText, "Bitte tragen Sie Ihr iTunes-Connect-Konto ein.");
    EXPECT_EQ(alerts.shown()[0].buttons[0].title, "Schließen");
}

TEST_F(GermanTextsTest, OffersAnUpdateInGermanWithTheNotesAsTheyAre) {
    publishVersion("1.2");
    checkForUpdates();
    ASSERT_THAT(alerts.shown(), SizeIs(1));
    EXPECT_EQ(alerts.shown()[0].messageText, "Aktualisierung verfügbar (Version 1.2)");
    EXPECT_EQ(alerts.shown()[0].informativeText,
              "Bitte laden Sie die neue Version herunter. Sie enthält folgende Änderungen:\n\n100 %@");
    EXPECT_EQ(alerts.shown()[0].buttons[0].title, "Herunterladen");
    EXPECT_EQ(alerts.shown()[0].buttons[1].title, "Abbrechen");
}

TEST_F(GermanTextsTest, TheVersionThatRunsIsNoUpdateInGermanEither) {
    publishVersion("1.1");
    checkForUpdates();
    EXPECT_THAT(alerts.shown(), SizeIs(0));
}

}  // namespace
}  // namespace corvane
