#include "engine/report_update_manager.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "support/engine_environment.h"

namespace corvane {
namespace {

using namespace std::chrono_literals;
using test::answerWithFile;
using test::answerWithItsReport;
using test::answerWithMessage;
using test::answerWithTransportFailure;
using test::formFields;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;

class ReportUpdateManagerTest : public testing::Test, protected test::EngineEnvironment {
  protected:
    void startRun() {
        manager.updateDailyReports([this](const UpdateProgress& progress) { calls.push_back(progress); });
    }

    void run() {
        startRun();
        runToEnd();
    }

    std::vector<std::string> requestedDates(const std::string& dateType, const std::string& vendorID) const {
        std::vector<std::string> dates;
        for (const HttpRequest& request : httpClient.requests()) {
            const auto fields = formFields(request.body);
            if (fields.at("DATETYPE") == dateType && fields.at("VNDNUMBER") == vendorID)
                dates.push_back(fields.at("REPORTDATE"));
        }
        return dates;
    }

    std::ptrdiff_t finishedCalls() const {
        return std::count_if(calls.begin(), calls.end(), [](const auto& call) { return call.isFinished; });
    }

    std::vector<UpdateProgress> calls;
};

TEST_F(ReportUpdateManagerTest, DoesNothingWithoutAnAccountList) {
    run();
    EXPECT_TRUE(calls.empty());
    EXPECT_TRUE(httpClient.requests().empty());
    EXPECT_THAT(log.lines(), ElementsAre("updateDailyReports Lite:0"));
}

TEST_F(ReportUpdateManagerTest, DoesNothingWithAnEmptyAccountList) {
    settings.setITunesAccounts(ITunesAccountList{});
    run();
    EXPECT_TRUE(calls.empty());
    EXPECT_EQ(settings.reportsDownloadedCache(), std::nullopt);
}

TEST_F(ReportUpdateManagerTest, LogsTheEditionAsANumber) {
    manager.setIsLite(true);
    run();
    EXPECT_THAT(log.lines(), ElementsAre("updateDailyReports Lite:1"));
}

TEST_F(ReportUpdateManagerTest, AFirstImportAsksForEveryReportOfTheSpansInDateOrder) {
    addAccount("80012345");
    run();

    const struct {
        const char* dateType;
        std::size_t count;
    } types[] = {{"Daily", 366}, {"Weekly", 56}, {"Monhtly", 14}, {"Yearly", 11}};
    for (const auto& type : types) {
        SCOPED_TRACE(type.dateType);
        const auto dates = requestedDates(type.dateType, "80012345");
        EXPECT_EQ(dates.size(), type.count);
        EXPECT_TRUE(std::is_sorted(dates.begin(), dates.end()));
    }
    EXPECT_EQ(requestedDates("Daily", "80012345").front(), "20140617");
    EXPECT_EQ(requestedDates("Daily", "80012345").back(), "20150617");
    EXPECT_EQ(requestedDates("Weekly", "80012345").back(), "20150614");
    EXPECT_EQ(requestedDates("Monhtly", "80012345").back(), "20150616");
    EXPECT_EQ(calls.size(), 447U);
    EXPECT_EQ(finishedCalls(), 1);
    EXPECT_TRUE(calls.back().isFinished);
}

TEST_F(ReportUpdateManagerTest, RemembersTheKeyOfEveryFetchedReportOnce) {
    addAccount("80012345");
    run();

    const ReportKeys keys = settings.reportsDownloadedCache().value();
    EXPECT_EQ(std::set(keys.begin(), keys.end()).size(), keys.size());
    for (const SaleDataReportType type : allReportTypes)
        EXPECT_TRUE(manager.dueReportDates(type).empty());
    EXPECT_EQ(settings.reportsDownloadedLiteCache(), std::nullopt);
}

TEST_F(ReportUpdateManagerTest, AnnouncesTheCountsAsTheyWereBeforeEachAnswer) {
    addAccount("1");
    fillCache([](const std::string& key) { return key == "20150616" || key == "20150617" || key == "2015"; });
    run();

    ASSERT_EQ(calls.size(),
              5U);  // three answers, and one closing call each for the empty weekly and monthly list
    for (std::size_t i = 0; i < calls.size(); ++i) {
        EXPECT_EQ(calls[i].reportsDone, static_cast<std::int64_t>(i));
        EXPECT_EQ(calls[i].reportsTotal, 3);
        EXPECT_EQ(calls[i].isFinished, i == 4);
    }
}

TEST_F(ReportUpdateManagerTest, AsksOnlyForWhatTheCacheLacksAndAppendsTheNewKeys) {
    addAccount("1");
    fillCache([](const std::string& key) { return key == "20150617"; });
    ReportKeys expected = *settings.reportsDownloadedCache();
    run();

    EXPECT_EQ(httpClient.requests().size(), 1U);
    EXPECT_THAT(requestedDates("Daily", "1"), ElementsAre("20150617"));
    expected.push_back("20150617");
    EXPECT_EQ(settings.reportsDownloadedCache(), expected);
}

TEST_F(ReportUpdateManagerTest, ARunWithNothingDueEndsWithASuccess) {
    addAccount("1");
    fillCache([](const std::string&) { return false; });
    run();

    EXPECT_TRUE(httpClient.requests().empty());
    ASSERT_EQ(calls.size(), 4U);
    EXPECT_TRUE(calls.back().isFinished);
    EXPECT_TRUE(calls.back().succeeded);
    EXPECT_EQ(calls.back().reportsTotal, 0);
}

TEST_F(ReportUpdateManagerTest, AnIncompleteOnlyAccountEndsTheRunAtOnceAndWithoutARequest) {
    addAccount("1")->setPassword(std::nullopt);
    startRun();

    ASSERT_EQ(calls.size(), 1U);
    EXPECT_FALSE(calls[0].succeeded);
    EXPECT_EQ(calls[0].path, std::nullopt);
    EXPECT_EQ(calls[0].reportsDone, 1);
    EXPECT_EQ(calls[0].reportsTotal, 1);
    EXPECT_TRUE(calls[0].isFinished);
    runToEnd();
    EXPECT_EQ(calls.size(), 1U);
    EXPECT_TRUE(httpClient.requests().empty());
    EXPECT_EQ(settings.reportsDownloadedCache(), std::nullopt);
    EXPECT_TRUE(alerts.shown().empty());
}

TEST_F(ReportUpdateManagerTest, EveryMissingFieldSkipsAnAccountButAnEmptyOneDoesNot) {
    const auto account = addAccount("1");
    fillCache([](const std::string& key) { return key == "2015"; });
    account->setEmail(std::nullopt);
    run();
    account->setEmail("user@example.com");
    account->setVendorID(std::nullopt);
    run();
    EXPECT_TRUE(httpClient.requests().empty());

    account->setVendorID("1");
    account->setPassword("");
    run();
    EXPECT_EQ(httpClient.requests().size(), 1U);
    EXPECT_EQ(formFields(httpClient.requests()[0].body).at("PASSWORD"), "");
}

TEST_F(ReportUpdateManagerTest, ASkippedFirstAccountLeavesTheRunToTheSecond) {
    addAccount("1")->setVendorID(std::nullopt);
    addAccount("2");
    fillCache([](const std::string& key) { return key == "2015"; });
    run();

    EXPECT_EQ(calls.size(), 4U);
    EXPECT_EQ(finishedCalls(), 1);
    EXPECT_THAT(*settings.reportsDownloadedCache(), Contains("2015"));
}

TEST_F(ReportUpdateManagerTest, ASkippedLastAccountAfterACompleteOneCallsNobody) {
    addAccount("1");
    addAccount("2")->setPassword(std::nullopt);
    fillCache([](const std::string& key) { return key == "2015"; });
    startRun();
    EXPECT_TRUE(calls.empty());
    runToEnd();
    EXPECT_EQ(finishedCalls(), 1);
}

TEST_F(ReportUpdateManagerTest, OnlyTheLastOfSeveralSkippedAccountsEndsTheRun) {
    for (const char* vendorID : {"1", "2", "3"})
        addAccount(vendorID)->setPassword(std::nullopt);
    startRun();
    ASSERT_EQ(calls.size(), 1U);
    EXPECT_TRUE(calls[0].isFinished);
}

TEST_F(ReportUpdateManagerTest, AsksTheFourTypesInTheirOrderForEachAccountInListOrder) {
    addAccount("1");
    addAccount("2");
    run();

    std::vector<std::string> order;
    for (const HttpRequest& request : httpClient.requests()) {
        const auto fields = formFields(request.body);
        const std::string batch = fields.at("VNDNUMBER") + fields.at("DATETYPE");
        if (order.empty() || order.back() != batch)
            order.push_back(batch);
    }
    EXPECT_THAT(order, ElementsAre("1Daily", "1Weekly", "1Monhtly", "1Yearly", "2Daily", "2Weekly",
                                   "2Monhtly", "2Yearly"));
}

TEST_F(ReportUpdateManagerTest, WithinOneRunEveryAccountIsAskedForTheSameDates) {
    addAccount("1");
    addAccount("2");
    fillCache([](const std::string& key) { return key == "20150617"; });
    run();
    EXPECT_THAT(requestedDates("Daily", "1"), ElementsAre("20150617"));
    EXPECT_THAT(requestedDates("Daily", "2"), ElementsAre("20150617"));
}

TEST_F(ReportUpdateManagerTest, StoresEachReportAndTellsItsPath) {
    addAccount("1");
    fillCache([](const std::string& key) { return key == "20150617"; });
    run();

    const std::string path = manager.filePathForFilename("S_D_1_20150617.txt");
    EXPECT_EQ(calls.back().path, path);  // after the closing calls of the three empty lists
    EXPECT_TRUE(calls.back().succeeded);
    EXPECT_EQ(files.contentsAtPath(path), toBytes("report of 20150617"));
    EXPECT_TRUE(log.contains("file:S_D_1_20150617.txt.gz downloaded sucessfully"));
    EXPECT_EQ(calls.front().path, std::nullopt);
}

TEST_F(ReportUpdateManagerTest, RemembersTheKeyAlthoughTheFileCouldNotBeWritten) {
    addAccount("1");
    fillCache([](const std::string& key) { return key == "20150617"; });
    files.failWritesWith(std::make_error_code(std::errc::no_space_on_device));
    run();

    EXPECT_THAT(*settings.reportsDownloadedCache(), Contains("20150617"));
    EXPECT_EQ(calls.back().path, manager.filePathForFilename("S_D_1_20150617.txt").native());
}

TEST_F(ReportUpdateManagerTest, RemembersTheKeyOfAReportThatIsNoText) {
    addAccount("1");
    fillCache([](const std::string& key) { return key == "20150617"; });
    service = [](const HttpRequest&) { return answerWithFile("S_D_1_20150617.txt.gz", "\xFF\xFE"); };
    run();

    EXPECT_THAT(*settings.reportsDownloadedCache(), Contains("20150617"));
    EXPECT_EQ(calls.back().path, std::nullopt);
    EXPECT_TRUE(calls.back().succeeded);
}

TEST_F(ReportUpdateManagerTest, AFailedReportLeavesNoKeyAndIsDueAgain) {
    addAccount("1");
    fillCache([](const std::string& key) { return key == "20150616" || key == "20150617"; });
    service = [](const HttpRequest& request) {
        return formFields(request.body).at("REPORTDATE") == "20150616" ? answerWithTransportFailure()
                                                                       : answerWithItsReport(request);
    };
    run();

    EXPECT_TRUE(log.contains("download not sucessfull"));
    EXPECT_THAT(*settings.reportsDownloadedCache(), Not(Contains("20150616")));
    EXPECT_EQ(manager.dueReportDates(SaleDataReportType::Daily).size(), 1U);
}

TEST_F(ReportUpdateManagerTest, TwoMonthlyDatesOfOneMonthAreBothAskedAndTheirKeyIsKeptOnce) {
    addAccount("1");
    clock.set(startOfLocalDay(std::chrono::year{2015} / 1 / 31) + 12h);
    fillCache([](const std::string& key) { return key == "201501"; });
    run();

    EXPECT_THAT(requestedDates("Monhtly", "1"), ElementsAre("20150102", "20150130"));
    const ReportKeys keys = *settings.reportsDownloadedCache();
    EXPECT_EQ(std::count(keys.begin(), keys.end(), "201501"), 1);
}

TEST_F(ReportUpdateManagerTest, KeepsTheOldKeysFirstWithTheirRepetitions) {
    addAccount("1");
    settings.setReportsDownloadedCache(ReportKeys{"zzz", "2015", "zzz"});
    run();

    const ReportKeys keys = *settings.reportsDownloadedCache();
    EXPECT_THAT(std::vector(keys.begin(), keys.begin() + 3), ElementsAre("zzz", "2015", "zzz"));
    EXPECT_EQ(std::count(keys.begin(), keys.end(), "2015"), 1);
}

TEST_F(ReportUpdateManagerTest, TheEditionsHaveTheirOwnCaches) {
    addAccount("1");
    fillCache([](const std::string&) { return false; });
    manager.setIsLite(true);
    run();

    EXPECT_EQ(httpClient.requests().size(), 447U);
    EXPECT_TRUE(settings.reportsDownloadedLiteCache());

    manager.setIsLite(false);
    run();
    EXPECT_EQ(httpClient.requests().size(), 447U);
}

TEST_F(ReportUpdateManagerTest, WritesTheCacheOfTheEditionThatIsSelectedWhenTheRunEnds) {
    addAccount("1");
    fillCache([](const std::string& key) { return key == "2015"; });
    const ReportKeys before = *settings.reportsDownloadedCache();
    startRun();
    manager.setIsLite(true);
    runToEnd();

    EXPECT_EQ(settings.reportsDownloadedCache(), before);
    EXPECT_THAT(settings.reportsDownloadedLiteCache().value(), Contains("2015"));
}

TEST_F(ReportUpdateManagerTest, WritesTheCacheOnlyAtTheEndAndOnlyOnce) {
    addAccount("1");
    startRun();
    backgroundQueue.runAll();
    const int before = defaults.synchronizeCount();
    calls.clear();
    mainQueue.runDueTasks();
    mainQueue.advance(1999ms);
    EXPECT_EQ(defaults.synchronizeCount(), before);
    EXPECT_TRUE(calls.empty());
    mainQueue.advance(1ms);
    EXPECT_EQ(calls.size(), 447U);
    EXPECT_EQ(defaults.synchronizeCount(), before + 1);
}

TEST_F(ReportUpdateManagerTest, ACutOffRunLeavesTheCacheButKeepsItsFiles) {
    addAccount("1");
    fillCache([](const std::string& key) { return key == "20150617" || key == "2015"; });
    const ReportKeys before = *settings.reportsDownloadedCache();
    int requests = 0;
    service = [&](const HttpRequest& request) {
        ++requests;
        return answerWithItsReport(request);
    };
    startRun();
    mainQueue.advance(10s);  // the empty lists have closed, no job has run yet
    EXPECT_EQ(requests, 0);
    EXPECT_EQ(settings.reportsDownloadedCache(), before);
    EXPECT_EQ(finishedCalls(), 0);
}

TEST_F(ReportUpdateManagerTest, AResetDuringTheRunIsUndoneByItsEnd) {
    addAccount("1");
    fillCache([](const std::string& key) { return key == "2015"; });
    startRun();
    settings.setReportsDownloadedCache(std::nullopt);
    runToEnd();
    EXPECT_GT(settings.reportsDownloadedCache().value().size(), 300U);
}

TEST_F(ReportUpdateManagerTest, ShowsTheServicesMessageWhenTheClosingAccountsSignInWasRejected) {
    addAccount("1");
    service = [](const HttpRequest&) { return answerWithMessage(test::signInMessage); };
    run();

    ASSERT_EQ(alerts.shown().size(), 1U);
    EXPECT_EQ(alerts.shown()[0].style, AlertStyle::Critical);
    EXPECT_EQ(alerts.shown()[0].messageText, "Failed to download new data");
    EXPECT_EQ(alerts.shown()[0].informativeText, test::signInMessage);
    EXPECT_TRUE(alerts.shown()[0].buttons.empty());
    EXPECT_EQ(httpClient.requests().size(), 4U);  // each list stops at its first date
    EXPECT_FALSE(calls.back().succeeded);
    EXPECT_TRUE(calls.back().isFinished);
}

TEST_F(ReportUpdateManagerTest, WritesTheCacheBeforeTheAlertAndTellsTheEndAfterIt) {
    addAccount("1");
    service = [](const HttpRequest&) { return answerWithMessage(test::signInMessage); };
    bool wasOpen = false;
    alerts.whileOpen([&](const Alert&) {
        wasOpen = true;
        EXPECT_TRUE(settings.reportsDownloadedCache());
        EXPECT_EQ(finishedCalls(), 0);
        EXPECT_EQ(mainQueue.advance(10s), 0U);
    });
    run();
    EXPECT_TRUE(wasOpen);
    EXPECT_EQ(finishedCalls(), 1);
}

TEST_F(ReportUpdateManagerTest, AnotherAccountsRejectedSignInShowsNoAlert) {
    addAccount("1");
    addAccount("2");
    service = [](const HttpRequest& request) {
        return formFields(request.body).at("VNDNUMBER") == "1" ? answerWithMessage(test::signInMessage)
                                                               : answerWithItsReport(request);
    };
    run();
    EXPECT_TRUE(alerts.shown().empty());
    EXPECT_EQ(finishedCalls(), 1);
    EXPECT_TRUE(calls.back().succeeded);
}

TEST_F(ReportUpdateManagerTest, AMessageThatIsNoRejectedSignInShowsNoAlert) {
    addAccount("1");
    service = [](const HttpRequest&) { return answerWithMessage("There are no reports available."); };
    run();
    EXPECT_TRUE(alerts.shown().empty());
    EXPECT_EQ(calls.size(), 447U);
}

TEST_F(ReportUpdateManagerTest, ASignInRejectedBeforeTheLastDateCountsItsListOnce) {
    addAccount("1");
    fillCache([](const std::string& key) { return key == "20150617" || key == "20150614"; });
    service = [](const HttpRequest& request) {
        return formFields(request.body).at("DATETYPE") == "Daily" ? answerWithMessage(test::signInMessage)
                                                                  : answerWithItsReport(request);
    };
    startRun();
    mainQueue.advance(3s);  // the monthly and the yearly list are empty: two batches done
    ASSERT_EQ(calls.size(), 2U);
    runToEnd();

    // Daily due dates: 20150614 and 20150617; rejected at once, closed once. Weekly: its one report.
    ASSERT_EQ(calls.size(), 5U);
    EXPECT_EQ(finishedCalls(), 1);
}

// In daily use a list has one date, so this is how a wrong password usually ends.
TEST_F(ReportUpdateManagerTest, ASignInRejectedOnTheLastDateCountsItsListTwiceSoThatTheRunMayEndEarly) {
    addAccount("1");
    fillCache([](const std::string& key) { return key == "20150617" || key == "2015"; });
    service = [](const HttpRequest& request) {
        return formFields(request.body).at("DATETYPE") == "Daily" ? answerWithMessage(test::signInMessage)
                                                                  : answerWithItsReport(request);
    };
    run();

    // Two empty lists, the rejected date, its closing call: four batches. The yearly report comes after the
    // end.
    ASSERT_EQ(calls.size(), 5U);
    EXPECT_FALSE(calls[2].isFinished);
    EXPECT_TRUE(calls[3].isFinished);
    EXPECT_FALSE(calls[4].isFinished);
    EXPECT_TRUE(calls[4].succeeded);
    EXPECT_EQ(calls[4].reportsDone, 4);
    EXPECT_EQ(calls[4].reportsTotal, 2);
    EXPECT_TRUE(files.contentsAtPath(calls[4].path.value()));
    EXPECT_THAT(*settings.reportsDownloadedCache(), Not(Contains("2015")));
    EXPECT_EQ(alerts.shown().size(), 1U);
}

TEST_F(ReportUpdateManagerTest, OverlappingRunsBothEndAndTheLastOneWritesTheCacheLast) {
    addAccount("1");
    fillCache([](const std::string& key) { return key == "2015"; });
    startRun();
    startRun();
    runToEnd();
    EXPECT_EQ(finishedCalls(), 2);
    EXPECT_EQ(httpClient.requests().size(), 2U);
}

TEST_F(ReportUpdateManagerTest, AnAccountAddedDuringTheRunIsLeftToTheNextRun) {
    addAccount("1");
    fillCache([](const std::string& key) { return key == "2015"; });
    startRun();
    addAccount("2");
    runToEnd();
    EXPECT_EQ(httpClient.requests().size(), 1U);
    EXPECT_EQ(finishedCalls(), 1);
}

TEST_F(ReportUpdateManagerTest, ThePasswordNeverReachesTheLog) {
    addAccount("1");
    service = [n = 0](const HttpRequest& request) mutable {
        return ++n % 3 == 0 ? answerWithTransportFailure() : answerWithItsReport(request);
    };
    run();
    for (const std::string& line : log.lines())
        EXPECT_EQ(line.find("secret"), std::string::npos) << line;
}

TEST(SharedReportUpdateManagerTest, HandsOutTheOneThatTheProgramMade) {
    test::EngineEnvironment environment;
    ReportUpdateManager::setSharedManager(&environment.manager);
    EXPECT_EQ(&ReportUpdateManager::sharedManager(), &environment.manager);
    ReportUpdateManager::setSharedManager(nullptr);
    EXPECT_DEATH(ReportUpdateManager::sharedManager(), "before the program made it");
}

}  // namespace
}  // namespace corvane
