// kill -9 at random moments: what is on disk is the old or the new, whole, and the next run asks for exactly
// what is missing.

#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <functional>
#include <random>
#include <thread>

#include "platform/memory/manual_background_queue.h"
#include "platform/memory/scripted_http_client.h"
#include "platform/system/atomic_file.h"
#include "reliability/engine_on_disk.h"
#include "reliability/rounds.h"
#include "support/engine_environment.h"
#include "support/temporary_folder.h"

namespace corvane::test {
namespace {

using std::chrono::microseconds;
using SteadyClock = std::chrono::steady_clock;

/// Runs the work in a process of its own and kills that after the time, unless it has ended before. There are
/// no threads in this test, so a fork is a whole copy.
void runAndKill(const std::function<void()>& work, microseconds time) {
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        work();
        _exit(EXIT_SUCCESS);
    }
    std::this_thread::sleep_for(time);
    kill(child, SIGKILL);
    ASSERT_EQ(waitpid(child, nullptr, 0), child);
}

microseconds durationOf(const std::function<void()>& work) {
    const auto start = SteadyClock::now();
    work();
    return std::chrono::duration_cast<microseconds>(SteadyClock::now() - start);
}

ReportKeys keysOfCount(int count) {
    ReportKeys keys;
    for (int index = 0; index < count; ++index)
        keys.push_back("key " + std::to_string(index));
    return keys;
}

TEST(Kill, WhileSettingsAreSavedLeavesTheOldOrTheNewContent) {
    constexpr int smallSize = 3;
    constexpr int largeSize = 2'000;
    const TemporaryFolder home;
    const auto file = EngineOnDisk::settingsFile(home.path());
    InMemoryLog log;
    const ManualClock clock;
    const auto save = [&](int size) {
        PropertyListFileStore store(file, log, clock);
        SettingsManger(store).setReportsDownloadedCache(keysOfCount(size));
        return store.synchronize();
    };
    ASSERT_TRUE(save(smallSize));
    std::mt19937 random(1);
    const microseconds both = durationOf([&save] { EXPECT_TRUE(save(largeSize) && save(smallSize)); });
    std::uniform_int_distribution<std::int64_t> delay(0, 4 * both.count());
    int oldContents = 0;
    const int count = rounds(25, 500);
    for (int round = 0; round < count; ++round) {
        runAndKill(
            [&save] {
                for (int size = largeSize;; size = size == largeSize ? smallSize : largeSize)
                    save(size);
            },
            microseconds(delay(random)));
        PropertyListFileStore store(file, log, clock);
        const std::optional<ReportKeys> keys = SettingsManger(store).reportsDownloadedCache();
        ASSERT_TRUE(log.lines().empty()) << "torn in round " << round;
        ASSERT_TRUE(keys) << "gone in round " << round;
        const bool isSmall = *keys == keysOfCount(smallSize);
        ASSERT_TRUE(isSmall || *keys == keysOfCount(largeSize)) << "mixed in round " << round;
        oldContents += isSmall ? 1 : 0;
    }
    removeLeftOvers(file.parent_path());
    EXPECT_EQ(namesIn(file.parent_path()), std::set<std::string>{"settings.plist"});
    EXPECT_GT(oldContents, 0);
    EXPECT_LT(oldContents, count);
}

class ImportKillTest : public testing::Test {
  protected:
    static constexpr std::size_t missingDays = 12;  // two Sundays among them have their key from the week

    ImportKillTest() {
        ManualBackgroundQueue queue;
        ScriptedHttpClient http(answerWithItsReport);
        EngineOnDisk engine({home_.path(), http, queue});
        engine.addAccount("4711");
        engine.fillCacheExceptDays(missingDays);
        missing_ = engine.dueKeys();
        settings_ = readFile(EngineOnDisk::settingsFile(home_.path()));
    }

    void importWhole() const {
        ManualBackgroundQueue queue;
        ScriptedHttpClient http(answerWithItsReport);
        EngineOnDisk engine({home_.path(), http, queue});
        engine.removeLeftOvers();
        engine.startRun();
        // One report after the other, as they come over a network.
        queue.runAll();
        while (engine.mainQueue.pendingCount() > 0)
            engine.turn();
    }

    /// As before the first run.
    void reset() const {
        std::filesystem::remove_all(EngineOnDisk::reportFolder(home_.path()));
        writeFile(EngineOnDisk::settingsFile(home_.path()), settings_);
    }

    static std::string nameOf(const std::string& key) { return "S_D_4711_" + key + ".txt"; }

    TemporaryFolder home_;
    std::set<std::string> missing_;
    std::string settings_;
};

TEST_F(ImportKillTest, AtAnyPointLeavesWholeFilesAndTheNextRunFetchesExactlyWhatIsMissing) {
    ASSERT_EQ(missing_.size(), missingDays - 2);
    const auto folder = EngineOnDisk::reportFolder(home_.path());
    const microseconds whole = durationOf([this] { importWhole(); });
    std::mt19937 random(2);
    std::uniform_int_distribution<std::int64_t> delay(0, whole.count() * 11 / 10);
    int unfinished = 0;
    for (int round = 0; round < rounds(20, 200); ++round) {
        SCOPED_TRACE(round);
        reset();
        runAndKill([this] { importWhole(); }, microseconds(delay(random)));
        for (const std::string& name : namesIn(folder)) {
            if (name.starts_with('.'))
                continue;
            ASSERT_EQ(name.substr(0, 9), "S_D_4711_");
            ASSERT_EQ(readFile(folder / name), "report of " + name.substr(9, 8)) << "torn";
        }

        // The next start.
        ManualBackgroundQueue queue;
        ScriptedHttpClient http(answerWithItsReport);
        EngineOnDisk engine({home_.path(), http, queue});
        ASSERT_EQ(countLines(engine.log, "unreadable"), 0U);
        ASSERT_TRUE(engine.settings.iTunesAccounts());
        ASSERT_EQ(engine.settings.iTunesAccounts()->front()->password(), "secret4711");
        engine.removeLeftOvers();
        for (const std::string& name : namesIn(folder))
            ASSERT_FALSE(name.starts_with('.')) << name << " was left over";
        // The cache is written at the end, whole: either all is recorded or nothing.
        const std::set<std::string> due = engine.dueKeys();
        ASSERT_TRUE(due.empty() || due == missing_);
        unfinished += due.empty() ? 0 : 1;

        engine.startRun();
        queue.runAll();
        while (engine.mainQueue.pendingCount() > 0)
            engine.turn();
        ASSERT_EQ(engine.finishes, 1);
        std::set<std::string> asked;
        for (const HttpRequest& request : http.requests())
            asked.insert(formFields(request.body).at("REPORTDATE"));
        ASSERT_EQ(asked, due);
        ASSERT_EQ(namesIn(folder).size(), missing_.size());
        ASSERT_TRUE(engine.dueKeys().empty());
        for (const std::string& key : missing_)
            ASSERT_EQ(readFile(folder / nameOf(key)), "report of " + key);
    }
    EXPECT_GT(unfinished, 0);
}

}  // namespace
}  // namespace corvane::test
