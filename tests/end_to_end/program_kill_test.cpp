// kill -9 of the real program while it imports: no file is torn, nothing is left over after the next start,
// and that start asks for exactly what its cache lacks.

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>
#include <random>
#include <thread>
#include <utility>

#include "demo_service/made_up_report_source.h"
#include "end_to_end/end_to_end_environment.h"
#include "end_to_end/report_days.h"
#include "reliability/rounds.h"

namespace corvane::test {
namespace {

using demo::ReportDateType;
using std::chrono::milliseconds;
using std::chrono::steady_clock;
using std::chrono::sys_days;

/// A program with an account of its own.
struct Importer {
    std::string vendorID;
    ProgramAtHome at;
    bool isDone = true;  ///< the next import begins from nothing
};

class ProgramKillTest : public EndToEndTest {
  protected:
    static constexpr std::size_t missingDays = 8;

    ProgramKillTest() {
        for (std::size_t number = 0; number < importers_.size(); ++number)
            importers_[number].vendorID = std::to_string(80012340 + number);
    }

    void startFromNothing(Importer& importer) const {
        std::filesystem::remove_all(importer.at.container());
        importer.at.writeAccounts({{"jane@example.com", "secret", importer.vendorID}},
                                  fullCacheWithout(days_), fullCache());
    }

    /// The days that the account was asked for, sorted.
    std::vector<sys_days> daysAskedFor(const Importer& importer) const {
        std::vector<sys_days> days;
        for (const demo::ReceivedRequest& request : service_->requests().requests()) {
            if (request.reportRequest && request.reportRequest->vendorId == importer.vendorID)
                days.emplace_back(request.reportRequest->date);
        }
        std::ranges::sort(days);
        return days;
    }

    std::vector<std::filesystem::path> reportsOf(const Importer& importer) const {
        std::vector<std::filesystem::path> paths;
        for (const sys_days day : days_)
            paths.push_back(importer.at.reportFolder() /
                            ("S_D_" + importer.vendorID + "_" + keyOf(ReportDateType::Daily, day) + ".txt"));
        return paths;
    }

    /// The number of reports that are there; each is whole.
    std::size_t countWholeReports(const Importer& importer) {
        const std::vector<std::filesystem::path> paths = reportsOf(importer);
        std::size_t count = 0;
        for (std::size_t index = 0; index < paths.size(); ++index) {
            if (!std::filesystem::exists(paths[index]))
                continue;
            ++count;
            EXPECT_EQ(readFile(paths[index]), source_.report(importer.vendorID, ReportDateType::Daily,
                                                             std::chrono::year_month_day(days_[index])))
                << "torn: " << paths[index];
        }
        return count;
    }

    /// The hidden files of the home: what a process has not finished.
    static std::vector<std::filesystem::path> unfinishedFiles(const Importer& importer) {
        std::vector<std::filesystem::path> paths;
        for (const std::string& name : ProgramAtHome::filesBelow(importer.at.home_.path())) {
            if (std::filesystem::path(name).filename().native().starts_with('.'))
                paths.push_back(importer.at.home_.path() / name);
        }
        return paths;
    }

    /// Starts the program, which removes what the killed one has left, and lets it ask for all that is
    /// missing.
    void startImport(Importer& importer) {
        // Taken before the start: the new process has unfinished files of its own now and then.
        const std::vector<std::filesystem::path> leftOvers = unfinishedFiles(importer);
        leftOverCount_ += leftOvers.size();
        importer.at.startProgram();
        for (const auto& path : leftOvers)
            EXPECT_TRUE(waitUntil([&path] { return !std::filesystem::exists(path); }, patience)) << path;
        importer.at.host_->requestImport(std::nullopt);
    }

    /// An import of each, as far as the last request.
    void startImports() {
        for (Importer& importer : importers_) {
            if (std::exchange(importer.isDone, false))
                startFromNothing(importer);
            startImport(importer);
        }
        ASSERT_TRUE(service_->requests().waitForCount(importers_.size() * missingDays, patience));
        for (const Importer& importer : importers_)
            EXPECT_EQ(daysAskedFor(importer), days_);
        service_->requests().clear();
    }

    /// Each at its own time; in every round another one is the first.
    void killEach(std::size_t round) {
        constexpr milliseconds firstPart{1'000};
        constexpr milliseconds part{300};
        std::uniform_int_distribution<milliseconds::rep> within(0, part.count());
        const auto start = steady_clock::now();
        for (std::size_t number = 0; number < importers_.size(); ++number) {
            std::this_thread::sleep_until(start + firstPart + part * number + milliseconds(within(random_)));
            importers_[(round + number) % importers_.size()].at.program_->sendSignal(SIGKILL);
        }
    }

    std::mt19937 random_{4};
    std::size_t leftOverCount_ = 0;
    std::array<Importer, 4> importers_;
    std::vector<sys_days> days_ = recentWorkdays(missingDays);
    demo::MadeUpReportSource source_;
};

TEST_F(ProgramKillTest, LeavesWholeFilesAndFetchesExactlyWhatIsMissingNext) {
    startService();
    // Each answer is stored two seconds after it came; so the files of a run come one after the other.
    service_->setBehaviour([](const demo::ReportRequest&) {
        return demo::Behaviour{.delivery = {.latency = milliseconds(150)}};
    });
    int killed = 0;
    int withSomeFiles = 0;
    int recorded = 0;
    const auto count = static_cast<std::size_t>(rounds(1, 60));
    for (std::size_t round = 0; round < count && !HasFatalFailure(); ++round) {
        SCOPED_TRACE(round);
        startImports();
        killEach(round);
        for (Importer& importer : importers_) {
            killed += importer.at.program_->waitForExit(patience) == -SIGKILL ? 1 : 0;
            EXPECT_TRUE(importer.at.host_->waitForProgram(false, patience));
            const std::size_t reports = countWholeReports(importer);
            withSomeFiles += reports > 0 && reports < missingDays ? 1 : 0;
            // The cache is saved at the end of a run: all of it is recorded, or nothing.
            importer.isDone = importer.at.cache() != fullCacheWithout(days_);
            recorded += importer.isDone ? 1 : 0;
            EXPECT_TRUE(!importer.isDone || reports == missingDays);
            EXPECT_TRUE(!importer.isDone || std::ranges::is_permutation(importer.at.cache(), fullCache()));
            EXPECT_TRUE(importer.at.settings().contains("settingsKeyItunesAccounts"));
        }
    }
    EXPECT_GT(killed, 0);
    std::printf(
        "%d killed, %d of them between two files; %d imports were recorded before; %zu unfinished files\n",
        killed, withSomeFiles, recorded, leftOverCount_);

    // Left alone, each fetches what is missing.
    startImports();
    for (Importer& importer : importers_) {
        EXPECT_EQ(importer.at.program_->waitForExit(patience), 0) << importer.at.log();
        EXPECT_EQ(countWholeReports(importer), missingDays);
        EXPECT_EQ(importer.at.reports().size(), missingDays);
    }
}

}  // namespace
}  // namespace corvane::test
