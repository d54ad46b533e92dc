// The n-th operation on files fails, for every n: the old content stays, one line is logged, and the run
// ends.

#include <gmock/gmock.h>

#include <cerrno>
#include <cstring>
#include <ostream>
#include <set>

#include "platform/memory/failing_file_manager.h"
#include "platform/memory/manual_background_queue.h"
#include "platform/memory/scripted_http_client.h"
#include "platform/property_list/property_list_reader.h"
#include "platform/system/atomic_file.h"
#include "reliability/engine_on_disk.h"
#include "reliability/system_call_faults.h"
#include "support/engine_environment.h"
#include "support/temporary_folder.h"

namespace corvane::test {
namespace {

constexpr std::size_t missingDays = 3;
constexpr const char* accountsKey = "settingsKeyItunesAccounts";
constexpr const char* saveFailure = "ERROR while saving report:";
constexpr const char* settingsFailure = "settings file cannot be written:";

struct FaultCase {
    const char* name;
    int error;
    SystemCallFaults::Extent extent;
};

std::ostream& operator<<(std::ostream& out, const FaultCase& fault) {
    return out << fault.name;
}

/// A home with one account, three days that are missing, and an old file of the name of the second one.
class FailingOperationTest : public testing::TestWithParam<FaultCase> {
  protected:
    FailingOperationTest() {
        ManualBackgroundQueue queue;
        ScriptedHttpClient http(answerWithItsReport);
        EngineOnDisk engine({home_.path(), http, queue});
        engine.addAccount("4711");
        engine.fillCacheExceptDays(missingDays);
        const std::set<std::string> keys = engine.dueKeys();
        keys_.assign(keys.begin(), keys.end());
        settings_ = readFile(EngineOnDisk::settingsFile(home_.path()));
    }

    std::filesystem::path reportOf(const std::string& key) const {
        return EngineOnDisk::reportFolder(home_.path()) / ("S_D_4711_" + key + ".txt");
    }

    void reset() const {
        std::filesystem::remove_all(EngineOnDisk::reportFolder(home_.path()));
        std::filesystem::remove_all(EngineOnDisk::settingsFile(home_.path()).parent_path());
        writeFile(reportOf(keys_.at(1)), "old");
        writeFile(EngineOnDisk::settingsFile(home_.path()), settings_);
    }

    static void finish(EngineOnDisk& engine, ManualBackgroundQueue& queue) {
        engine.startRun();
        queue.runAll();
        while (engine.mainQueue.pendingCount() > 0)
            engine.turn();
    }

    /// Each report is whole, or as it was before.
    void expectWholeReports() const {
        for (const std::string& key : keys_) {
            const bool isOld = key == keys_.at(1) && readFile(reportOf(key)) == "old";
            if (isOld || !std::filesystem::exists(reportOf(key)))
                continue;
            EXPECT_EQ(readFile(reportOf(key)), "report of " + key);
        }
    }

    /// A folder that is there need not be made, and the file in it is private also where the folder is not.
    static bool isHarmlessAlone(const std::string& call) {
        return GetParam().extent == SystemCallFaults::Extent::One && (call == "mkdir" || call == "chmod");
    }

    std::filesystem::path sourceOfCopies() const { return home_.path() / "source.txt"; }

    static void emptyFolder(const std::filesystem::path& folder) {
        std::filesystem::remove_all(folder);
        std::filesystem::create_directory(folder);
    }

    TemporaryFolder home_;
    std::vector<std::string> keys_;
    std::string settings_;
};

TEST_F(FailingOperationTest, EachFileManagerOperationOfARun) {
    // Each report is written, and all are flushed in the end.
    std::size_t operations = missingDays + 1;
    for (std::size_t failing = 0; failing < operations; ++failing) {
        SCOPED_TRACE(failing);
        reset();
        ManualBackgroundQueue queue;
        ScriptedHttpClient http(answerWithItsReport);
        PosixFileManager files(home_.path() / "data");
        // The look-up of the container comes first; without one the program does not start.
        FailingFileManager faulty(files, failing + 1);
        EngineOnDisk engine({home_.path(), http, queue, &faulty});
        finish(engine, queue);
        EXPECT_EQ(engine.finishes, 1);
        EXPECT_EQ(countLines(engine.log, saveFailure), 1U);
        EXPECT_EQ(engine.paths.size(), missingDays) << "the path is told although nothing was written";
        if (failing < missingDays) {
            EXPECT_EQ(readFile(reportOf(keys_.at(failing))), failing == 1 ? "old" : "");
        }
        expectWholeReports();
        EXPECT_TRUE(engine.dueKeys().empty()) << "a key is recorded although its file could not be saved";
        operations = faulty.operationCount() - 1;
    }
    EXPECT_EQ(operations, missingDays + 1);
}

TEST_F(FailingOperationTest, NothingFailsAndTheReportsAreOnDiskBeforeTheCacheSaysSo) {
    reset();
    ManualBackgroundQueue queue;
    ScriptedHttpClient http(answerWithItsReport);
    EngineOnDisk engine({home_.path(), http, queue});
    const SystemCallFaults noFaults(-1, 0, SystemCallFaults::Extent::One);
    finish(engine, queue);
    const auto& calls = noFaults.calls();
    const auto flushOfReports = std::find(calls.begin(), calls.end(), "syncfs");
    const auto flushOfSettings = std::find(calls.begin(), calls.end(), "fsync");
    EXPECT_EQ(std::count(calls.begin(), flushOfReports, "renameat"), missingDays);
    EXPECT_LT(flushOfReports, flushOfSettings);
    EXPECT_EQ(std::count(flushOfSettings, calls.end(), "renameat"), 1);
}

TEST_P(FailingOperationTest, EachSystemCallOfARun) {
    for (int failing = 0;; ++failing) {
        reset();
        ManualBackgroundQueue queue;
        ScriptedHttpClient http(answerWithItsReport);
        EngineOnDisk engine({home_.path(), http, queue});
        engine.startRun();
        queue.runAll();
        std::string call;
        {
            SystemCallFaults faults(failing, GetParam().error, GetParam().extent);
            while (engine.mainQueue.pendingCount() > 0)
                engine.turn();
            if (!faults.hasFailed()) {
                EXPECT_GT(failing, 30) << "the calls do not come through here";
                break;
            }
            call = faults.calls().at(static_cast<std::size_t>(failing));
        }
        SCOPED_TRACE("call " + std::to_string(failing) + " " + call);
        ASSERT_EQ(engine.finishes, 1);
        const std::size_t lines = countLines(engine.log, saveFailure) +
                                  countLines(engine.log, settingsFailure) +
                                  countLines(engine.log, "unreadable settings file");
        const bool isHarmless = isHarmlessAlone(call);
        EXPECT_GE(lines, isHarmless ? 0U : 1U);
        if (!isHarmless && GetParam().extent == SystemCallFaults::Extent::One) {
            EXPECT_EQ(lines, 1U);
        }
        expectWholeReports();

        // The next start finds everything in order.
        EngineOnDisk next({home_.path(), http, queue});
        next.removeLeftOvers();
        for (const std::string& name : namesIn(EngineOnDisk::reportFolder(home_.path())))
            EXPECT_FALSE(name.starts_with('.')) << name;
        if (HasFailure())
            break;
    }
}

TEST_P(FailingOperationTest, EachSystemCallOfASettingsSave) {
    const auto file = EngineOnDisk::settingsFile(home_.path());
    for (int failing = 0;; ++failing) {
        reset();
        InMemoryLog log;
        const ManualClock clock;
        PropertyListFileStore store(file, log, clock);
        const auto old = readPropertyList(toBytes(readFile(file)));
        store.setObject("new", "value");
        std::string call;
        {
            SystemCallFaults faults(failing, GetParam().error, GetParam().extent);
            store.synchronize();
            if (!faults.hasFailed()) {
                EXPECT_GT(failing, 8) << "the calls do not come through here";
                break;
            }
            call = faults.calls().at(static_cast<std::size_t>(failing));
        }
        SCOPED_TRACE("call " + std::to_string(failing) + " " + call);
        const bool isHarmless = isHarmlessAlone(call);
        EXPECT_GE(log.lines().size(), isHarmless ? 0U : 1U) << testing::PrintToString(log.lines());
        if (GetParam().extent == SystemCallFaults::Extent::One) {
            EXPECT_LE(log.lines().size(), 1U) << testing::PrintToString(log.lines());
        }
        bool isOldKept = false;
        for (const std::string& name : namesIn(file.parent_path()))
            isOldKept |= readPropertyList(toBytes(readFile(file.parent_path() / name))) == old;
        // The folder's flush comes after the new file is in place.
        EXPECT_TRUE(isOldKept || isHarmless || call == "fsync");
        const auto now = readPropertyList(toBytes(readFile(file)));
        const auto* domain = now ? now->get<PropertyListDictionary>() : nullptr;
        EXPECT_TRUE(!std::filesystem::exists(file) || (domain != nullptr && domain->contains(accountsKey)));
        // A save that the disk allows makes up for it, and nothing is lost.
        EXPECT_TRUE(store.synchronize());
        EXPECT_EQ(PropertyListFileStore(file, log, clock).objectForKey("new"), PropertyListValue("value"));
        EXPECT_TRUE(PropertyListFileStore(file, log, clock).objectForKey(accountsKey));
        removeLeftOvers(file.parent_path());
        for (const std::string& name : namesIn(file.parent_path()))
            EXPECT_TRUE(name == "settings.plist" || name.starts_with("settings.plist.unreadable-")) << name;
        if (HasFailure())
            break;
    }
}

TEST_P(FailingOperationTest, EachSystemCallOfTheFirstSettingsSave) {
    const auto file = home_.path() / "new" / "config" / "settings.plist";
    for (int failing = 0;; ++failing) {
        std::filesystem::remove_all(home_.path() / "new");
        InMemoryLog log;
        const ManualClock clock;
        PropertyListFileStore store(file, log, clock);
        store.setObject("new", "value");
        std::string call;
        bool isSaved = false;
        {
            SystemCallFaults faults(failing, GetParam().error, GetParam().extent);
            isSaved = store.synchronize();
            if (!faults.hasFailed()) {
                EXPECT_GT(failing, 8) << "the calls do not come through here";
                break;
            }
            call = faults.calls().at(static_cast<std::size_t>(failing));
        }
        SCOPED_TRACE("call " + std::to_string(failing) + " " + call);
        EXPECT_EQ(log.lines().size(), isSaved ? 0U : 1U) << testing::PrintToString(log.lines());
        EXPECT_TRUE(!isSaved || readPropertyList(toBytes(readFile(file))));
        EXPECT_TRUE(store.synchronize());
        EXPECT_EQ(PropertyListFileStore(file, log, clock).objectForKey("new"), PropertyListValue("value"));
        if (HasFailure())
            break;
    }
}

TEST_P(FailingOperationTest, EachSystemCallOfACopy) {
    PosixFileManager files(home_.path());
    const auto copy = home_.path() / "copies" / "copy.txt";
    const std::string content(100'000, 'x');
    writeFile(sourceOfCopies(), content);
    for (int failing = 0;; ++failing) {
        emptyFolder(copy.parent_path());
        std::error_code error;
        std::string call;
        {
            SystemCallFaults faults(failing, GetParam().error, GetParam().extent);
            error = files.copyItem(sourceOfCopies(), copy);
            if (!faults.hasFailed()) {
                EXPECT_GT(failing, 8) << "the calls do not come through here";
                break;
            }
            call = faults.calls().at(static_cast<std::size_t>(failing));
        }
        SCOPED_TRACE("call " + std::to_string(failing) + " " + call);
        EXPECT_EQ(error.value(), GetParam().error);
        // The folder's flush comes after the copy is in place.
        const bool isThere = std::filesystem::exists(copy);
        EXPECT_TRUE(!isThere || call == "fsync");
        EXPECT_TRUE(!isThere || readFile(copy) == content);
        if (HasFailure())
            break;
    }
}

TEST_F(FailingOperationTest, AnInterruptedCallIsMadeAgain) {
    PosixFileManager files(home_.path());
    const auto copy = home_.path() / "copies" / "copy.txt";
    const std::string content(100'000, 'x');
    writeFile(sourceOfCopies(), content);
    std::set<std::string> madeAgain;
    for (int interrupted = 0;; ++interrupted) {
        emptyFolder(copy.parent_path());
        SystemCallFaults faults(interrupted, EINTR, SystemCallFaults::Extent::One);
        const std::error_code error = files.copyItem(sourceOfCopies(), copy);
        if (!faults.hasFailed())
            break;
        if (!error) {
            EXPECT_EQ(readFile(copy), content) << interrupted;
            madeAgain.insert(faults.calls().at(static_cast<std::size_t>(interrupted)));
        }
    }
    EXPECT_EQ(madeAgain, (std::set<std::string>{"fsync", "openat", "read", "write"}));
}

INSTANTIATE_TEST_SUITE_P(
    EveryFault, FailingOperationTest,
    testing::Values(FaultCase{"no space", ENOSPC, SystemCallFaults::Extent::One},
                    FaultCase{"read-only", EROFS, SystemCallFaults::Extent::One},
                    FaultCase{"I/O error", EIO, SystemCallFaults::Extent::One},
                    FaultCase{"no space from then on", ENOSPC, SystemCallFaults::Extent::AllFrom},
                    FaultCase{"I/O error from then on", EIO, SystemCallFaults::Extent::AllFrom}));

}  // namespace
}  // namespace corvane::test
