#include "app/report_update_view_controller.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/app_environment.h"

namespace corvane {
namespace {

using namespace std::chrono_literals;
using test::answerWithTransportFailure;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

class ReportUpdateViewControllerTest : public testing::Test, protected test::AppEnvironment {
  protected:
    ReportUpdateViewControllerTest() {
        addAccount("1");
        delegate.applicationDidFinishLaunching();
    }

    test::FakeImportWindow& openImportWindow() {
        requestImport();
        return *interfaceFiles.importWindows.back();
    }

    /// Lets time pass before each answer, so that the window can be brought up to date between answers.
    void answerOneByOne() {
        service = [this](const HttpRequest& request) {
            mainQueue.advance(100ms);
            return test::answerWithItsReport(request);
        };
    }

    void runImport() {
        openImportWindow().appear();
        runToEnd();
    }
};

TEST_F(ReportUpdateViewControllerTest, StartsWithNothingDone) {
    const ReportUpdateViewController& controller = openImportWindow().controller();
    EXPECT_FALSE(controller.isDownloadingReports());
    EXPECT_FALSE(controller.isLite());
    EXPECT_EQ(controller.downloadCounter(), 0);
    EXPECT_EQ(controller.downloadGoal(), 0);
    EXPECT_THAT(controller.urls(), IsEmpty());
}

TEST_F(ReportUpdateViewControllerTest, SaysThatItPreparesAndStartsASecondAfterItAppeared) {
    test::FakeImportWindow& window = openImportWindow();
    mainQueue.advance(10s);
    EXPECT_FALSE(log.contains("updateDailyReports Lite:0"));

    window.appear();
    EXPECT_THAT(window.view().descriptions, ElementsAre("Preparing Import..."));
    mainQueue.advance(999ms);
    EXPECT_FALSE(window.controller().isDownloadingReports());
    mainQueue.advance(1ms);
    EXPECT_TRUE(window.controller().isDownloadingReports());
    EXPECT_TRUE(log.contains("updateDailyReports Lite:0"));
}

TEST_F(ReportUpdateViewControllerTest, HandsItsEditionToTheEngine) {
    requestImport(std::string(R"({"isLite": true})"));
    interfaceFiles.importWindows.back()->appear();
    runToEnd();
    EXPECT_TRUE(settings.reportsDownloadedLiteCache());
    EXPECT_FALSE(settings.reportsDownloadedCache());
}

TEST_F(ReportUpdateViewControllerTest, ShowsCountsPercentageAndBar) {
    fillCache([](const std::string& key) { return key >= "20150610" && key <= "20150617"; });
    answerOneByOne();
    test::FakeImportWindow& window = openImportWindow();
    window.appear();
    runToEnd();

    // Eight days and a week: nine reports, after the closing calls of two empty lists, which count as well.
    const test::FakeReportUpdateView& view = window.view();
    for (const char* text :
         {"Downloaded 2 of 9 reports", "Downloaded 3 of 9 reports", "Downloaded 9 of 9 reports"})
        EXPECT_THAT(view.descriptions, Contains(text));
    for (const char* text : {"22.22% completed", "33.33% completed", "100.00% completed"})
        EXPECT_THAT(view.progressTexts, Contains(text));
    EXPECT_EQ(view.descriptions.back(), "Downloaded 9 of 9 reports");
}

TEST_F(ReportUpdateViewControllerTest, ThreeOfEightReportsAreThirtySevenAndAHalfPercent) {
    addAccount("2");
    fillCache([](const std::string& key) { return key >= "20150615" && key <= "20150617"; });
    settings.setReportsDownloadedCache([keys = *settings.reportsDownloadedCache()]() mutable {
        std::erase(keys, "2015");
        return keys;
    }());
    answerOneByOne();
    test::FakeImportWindow& window = openImportWindow();
    window.appear();
    runToEnd();
    EXPECT_THAT(window.view().descriptions, Contains("Downloaded 3 of 8 reports"));
    EXPECT_THAT(window.view().progressTexts, Contains("37.50% completed"));
    EXPECT_THAT(window.view().progressValues, Contains(37.5));
}

TEST_F(ReportUpdateViewControllerTest, ARunWithNothingToDoShowsThatNothingHasNoPercentage) {
    fillCache([](const std::string&) { return false; });
    test::FakeImportWindow& window = openImportWindow();
    window.appear();
    mainQueue.advance(1s);
    mainQueue.advance(2s);
    EXPECT_FALSE(window.controller().isDownloadingReports());

    window.controller().updateView();
    EXPECT_EQ(window.view().progressTexts.back(), "0.00% completed");
}

TEST_F(ReportUpdateViewControllerTest, WithoutARunTheViewKeepsItsDescriptionAtZeroPercent) {
    test::FakeImportWindow& window = openImportWindow();
    window.appear();
    window.controller().updateView();
    EXPECT_THAT(window.view().descriptions, ElementsAre("Preparing Import..."));
    EXPECT_THAT(window.view().progressTexts, ElementsAre("0.00% completed"));
    EXPECT_THAT(window.view().progressValues, ElementsAre(0.0));
}

TEST_F(ReportUpdateViewControllerTest, TheLastUpdateComesAfterTheFinishAndShowsZero) {
    fillCache([](const std::string& key) { return key == "2015"; });
    test::FakeImportWindow& window = openImportWindow();
    window.appear();
    runToEnd();
    EXPECT_EQ(window.view().progressTexts.back(), "0.00% completed");
    EXPECT_EQ(window.view().progressValues.back(), 0.0);
}

TEST_F(ReportUpdateViewControllerTest, EndsInOrderSheetOwnNoticeNoticeToTheHostQuit) {
    fillCache([](const std::string& key) { return key == "2015"; });
    test::FakeImportWindow& window = openImportWindow();
    bool wasNotified = false;
    notificationCenter.addObserver("reportUpdateViewControllerDidFinishNotification",
                                   [&](const Notification& notification) {
                                       wasNotified = true;
                                       EXPECT_EQ(notification.object.get(), &window.controller());
                                       EXPECT_FALSE(window.controller().isDownloadingReports());
                                       EXPECT_EQ(window.controller().urls().size(), 1U);
                                       EXPECT_FALSE(window.isOnWindow());
                                       EXPECT_THAT(distributedCenter.posted(), IsEmpty());
                                       EXPECT_EQ(application.terminateCount(), 0);
                                   });
    window.appear();
    runToEnd();

    EXPECT_TRUE(wasNotified);
    EXPECT_THAT(distributedCenter.posted(),
                ElementsAre("reportUpdateViewControllerDidFinishDistributedNotification"));
    EXPECT_EQ(application.terminateCount(), 1);
}

TEST_F(ReportUpdateViewControllerTest, StaysOpenWhenTheLastAnswerFailed) {
    fillCache([](const std::string& key) { return key == "20150616" || key == "2015"; });
    service = [](const HttpRequest& request) {
        const bool isLast = test::formFields(request.body).at("DATETYPE") == "Yearly";
        return isLast ? answerWithTransportFailure() : test::answerWithItsReport(request);
    };
    runImport();
    EXPECT_EQ(distributedCenter.posted().size(), 1U);
    EXPECT_EQ(application.terminateCount(), 0);
    EXPECT_FALSE(interfaceFiles.importWindows.back()->isOnWindow());
}

TEST_F(ReportUpdateViewControllerTest, QuitsWhenTheLastAnswerSucceededWhateverFailedBefore) {
    fillCache([](const std::string& key) { return key == "20150616" || key == "2015"; });
    service = [](const HttpRequest& request) {
        const bool isLast = test::formFields(request.body).at("DATETYPE") == "Yearly";
        return isLast ? test::answerWithItsReport(request) : answerWithTransportFailure();
    };
    runImport();
    EXPECT_EQ(application.terminateCount(), 1);
}

TEST_F(ReportUpdateViewControllerTest, ASkippedAccountEndsTheImportAtOnceAndLeavesTheProgramOpen) {
    settings.iTunesAccounts()->front()->setPassword(std::nullopt);
    test::FakeImportWindow& window = openImportWindow();
    window.appear();
    mainQueue.advance(1s);
    EXPECT_FALSE(window.isOnWindow());
    EXPECT_FALSE(window.controller().isDownloadingReports());
    EXPECT_EQ(window.controller().downloadCounter(), 1);
    EXPECT_EQ(window.controller().downloadGoal(), 1);
    EXPECT_EQ(distributedCenter.posted().size(), 1U);
    EXPECT_EQ(application.terminateCount(), 0);
}

TEST_F(ReportUpdateViewControllerTest, CollectsThePathsInTheOrderInWhichTheyCameRepetitionsIncluded) {
    fillCache([](const std::string& key) { return key == "20150616" || key == "20150617"; });
    service = [](const HttpRequest&) { return test::answerWithFile("same name.txt.gz", "text"); };
    test::FakeImportWindow& window = openImportWindow();
    window.appear();
    runToEnd();

    const ResourceUrl url = ResourceUrl::ofFile(manager.filePathForFilename("same name.txt"));
    EXPECT_THAT(window.controller().urls(), ElementsAre(url, url));
    EXPECT_EQ(url.filePath(), manager.filePathForFilename("same name.txt"));
}

TEST_F(ReportUpdateViewControllerTest, AnswersAfterTheEndChangeNothingButTheCounts) {
    fillCache([](const std::string& key) { return key == "20150617" || key == "2015"; });
    service = [](const HttpRequest& request) {
        return test::formFields(request.body).at("DATETYPE") == "Daily"
                   ? test::answerWithMessage(test::signInMessage)
                   : test::answerWithItsReport(request);
    };
    test::FakeImportWindow& window = openImportWindow();
    window.appear();
    runToEnd();
    EXPECT_EQ(distributedCenter.posted().size(), 1U);
    EXPECT_THAT(window.controller().urls(), IsEmpty());
    EXPECT_EQ(window.controller().downloadCounter(), 4);
    EXPECT_EQ(application.terminateCount(), 0);
}

TEST_F(ReportUpdateViewControllerTest, ItsRunOutlivesTheDroppedWindowAndEndsItsOwnSheet) {
    fillCache([](const std::string& key) { return key == "2015"; });
    openImportWindow().appear();
    openImportWindow();  // the delegate lets go of the first one; its sheet keeps it
    const auto first = interfaceFiles.importWindows.front();
    runToEnd();
    EXPECT_FALSE(first->isOnWindow());
    EXPECT_TRUE(interfaceFiles.importWindows.back()->isOnWindow());
}

TEST_F(ReportUpdateViewControllerTest, AFinishWithoutASheetIsFatal) {
    settings.iTunesAccounts()->front()->setPassword(std::nullopt);
    test::FakeImportWindow& window = openImportWindow();
    window.appear();
    window.endSheet();
    EXPECT_DEATH(mainQueue.advance(1s), "not a sheet");
}

TEST_F(ReportUpdateViewControllerTest, CopiesFilesIntoTheSharedReportsFolderAndKeepsWhatIsThere) {
    const auto container = files.containerForApplicationGroup(applicationGroupIdentifier).value();
    files.createDirectoryAtPath("/home/user");
    files.createDirectoryAtPath(container / "Reports");
    files.writeAtomically("/home/user/a report.txt", toBytes("new"));
    files.writeAtomically("/home/user/other.txt", toBytes("other"));
    files.writeAtomically(container / "Reports" / "other.txt", toBytes("kept"));
    const std::vector<ResourceUrl> urls = {
        ResourceUrl("https://example.com/web.txt"), ResourceUrl::ofFile("/home/user/missing.txt"),
        ResourceUrl("file:///"), ResourceUrl::ofFile("/home/user/other.txt"),
        ResourceUrl::ofFile("/home/user/a report.txt")};
    ReportUpdateViewController& controller = openImportWindow().controller();
    controller.loadURLs(urls);

    EXPECT_EQ(controller.urls(), urls);
    EXPECT_EQ(files.contentsAtPath(container / "Reports" / "a report.txt"), toBytes("new"));
    EXPECT_EQ(files.contentsAtPath(container / "Reports" / "other.txt"), toBytes("kept"));
    EXPECT_EQ(files.contentsAtPath("/home/user/a report.txt"), toBytes("new"));
    EXPECT_TRUE(log.contains("copy from:/home/user/a report.txt to:" +
                             (container / "Reports/a report.txt").native()));
    EXPECT_TRUE(
        log.contains("copy from:/home/user/missing.txt to:" + (container / "Reports/missing.txt").native()));
}

TEST_F(ReportUpdateViewControllerTest, MakesTheReportsFolderForTheFirstCopy) {
    const auto container = files.containerForApplicationGroup(applicationGroupIdentifier).value();
    files.createDirectoryAtPath("/home/user");
    files.writeAtomically("/home/user/a.txt", toBytes("new"));
    openImportWindow().controller().loadURLs({ResourceUrl::ofFile("/home/user/a.txt")});
    EXPECT_EQ(files.contentsAtPath(container / "Reports" / "a.txt"), toBytes("new"));
}

TEST_F(ReportUpdateViewControllerTest, CopiesNothingThatHasNoFileName) {
    const auto container = files.containerForApplicationGroup(applicationGroupIdentifier).value();
    files.createDirectoryAtPath("/home/user");
    const std::vector<ResourceUrl> urls{ResourceUrl("file:"), ResourceUrl("file:///home/user/")};
    ReportUpdateViewController& controller = openImportWindow().controller();
    controller.loadURLs(urls);
    EXPECT_EQ(controller.urls(), urls);
    EXPECT_TRUE(files.contentsOfDirectory(container / "Reports").empty());
    for (const std::string& line : log.lines())
        EXPECT_FALSE(line.starts_with("copy from:")) << line;
}

TEST_F(ReportUpdateViewControllerTest, CopyingWithoutTheSharedContainerIsFatal) {
    ReportUpdateViewController& controller = openImportWindow().controller();
    files.refuseContainers();
    EXPECT_DEATH(controller.loadURLs({ResourceUrl::ofFile("/home/user/a.txt")}), "shared folder");
    controller.loadURLs({ResourceUrl("https://example.com/web.txt")});
}

}  // namespace
}  // namespace corvane
