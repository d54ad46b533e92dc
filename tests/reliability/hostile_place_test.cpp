// Places where a report cannot, or must not, be written: the run ends all the same, and nothing else is
// touched.

#include <gmock/gmock.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <functional>

#include "platform/memory/manual_background_queue.h"
#include "platform/memory/scripted_http_client.h"
#include "reliability/engine_on_disk.h"
#include "support/engine_environment.h"
#include "support/temporary_folder.h"

namespace corvane::test {
namespace {

constexpr std::size_t missingDays = 3;
constexpr const char* saveFailure = "ERROR while saving report:";

/// In a process of its own, whose changed identity or mounts end with it. Its failures are printed, and are
/// this test's.
void inChild(const std::function<void()>& work) {
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        work();
        _exit(testing::Test::HasFailure() ? EXIT_FAILURE : EXIT_SUCCESS);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == EXIT_SUCCESS) << "status " << status;
}

/// Puts a disk of 96 KiB in place of the folder; for a child, with whose end it is gone.
void mountSmallDisk(const std::filesystem::path& folder) {
    const uid_t user = geteuid();
    const gid_t group = getegid();
    // Root mounts in a namespace of its own; others need a user namespace, too, to be root in.
    const int userNamespace = user == 0 ? 0 : CLONE_NEWUSER;
    ASSERT_EQ(unshare(userNamespace | CLONE_NEWNS), 0) << "namespaces are needed to mount a small disk";
    if (userNamespace != 0) {
        std::ofstream("/proc/self/setgroups") << "deny";
        std::ofstream("/proc/self/uid_map") << "0 " << user << " 1";
        std::ofstream("/proc/self/gid_map") << "0 " << group << " 1";
    }
    mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr);  // nobody else sees the disk
    std::filesystem::create_directories(folder);
    ASSERT_EQ(mount("none", folder.c_str(), "tmpfs", 0, "size=96k"), 0);
}

constexpr uid_t ordinaryUser = 12345;

class HostilePlaceTest : public testing::Test {
  protected:
    std::filesystem::path folder() const { return EngineOnDisk::reportFolder(home_.path()); }

    /// A run of three days in that home, whose names and texts the service chooses. What is missing on disk
    /// is told by the caller.
    void importInto(std::size_t expectedFailures,
                    const std::function<HttpAnswer(const HttpRequest&)>& service = answerWithItsReport) {
        ManualBackgroundQueue queue;
        ScriptedHttpClient http(service);
        EngineOnDisk engine({home_.path(), http, queue});
        engine.addAccount("4711");
        engine.fillCacheExceptDays(missingDays);
        engine.startRun();
        queue.runAll();
        while (engine.mainQueue.pendingCount() > 0)
            engine.turn();
        EXPECT_EQ(engine.finishes, 1);
        EXPECT_EQ(engine.paths.size(), missingDays);
        EXPECT_EQ(countLines(engine.log, saveFailure), expectedFailures)
            << testing::PrintToString(engine.log.lines());
        for (const std::string& name : namesIn(folder()))
            EXPECT_FALSE(name.starts_with('.')) << name;
    }

    static HttpAnswer answerWithLongReport(const HttpRequest& request) {
        std::string text(40'000, 'x');
        for (std::size_t index = 0; index < text.size(); ++index)
            text[index] = static_cast<char>('a' + (index * index) % 23);
        return answerWithFile("S_D_4711_" + formFields(request.body).at("REPORTDATE") + ".txt.gz", text);
    }

    TemporaryFolder home_;
};

TEST_F(HostilePlaceTest, AFullDisk) {
    inChild([this] {
        ASSERT_NO_FATAL_FAILURE(mountSmallDisk(home_.path() / "data"));
        // Two reports of 40,000 bytes fit, a third one does not.
        importInto(1, answerWithLongReport);
        std::size_t whole = 0;
        for (const std::string& name : namesIn(folder()))
            whole += readFile(folder() / name).size() == 40'000 ? 1U : 0U;
        EXPECT_EQ(whole, 2U);
        EXPECT_EQ(namesIn(folder()).size(), 2U);
    });
}

TEST_F(HostilePlaceTest, AFullDiskUnderTheSettings) {
    inChild([this] {
        const auto file = EngineOnDisk::settingsFile(home_.path());
        ASSERT_NO_FATAL_FAILURE(mountSmallDisk(file.parent_path()));
        const auto filler = file.parent_path() / "filler";
        InMemoryLog log;
        const ManualClock clock;
        PropertyListFileStore store(file, log, clock);
        store.setObject("key", "old");
        ASSERT_TRUE(store.synchronize());
        writeFile(filler, std::string(80'000, 'x'));
        const std::string old = readFile(file);
        store.setObject("key", std::string(40'000, 'n'));
        EXPECT_FALSE(store.synchronize());
        EXPECT_EQ(countLines(log, "settings file cannot be written:No space left on device"), 1U);
        EXPECT_EQ(log.lines().size(), 1U);
        EXPECT_EQ(readFile(file), old);
        EXPECT_EQ(namesIn(file.parent_path()), (std::set<std::string>{"filler", "settings.plist"}));
        // With room again nothing is lost.
        std::filesystem::remove(filler);
        EXPECT_TRUE(store.synchronize());
        EXPECT_EQ(PropertyListFileStore(file, log, clock).objectForKey("key"),
                  PropertyListValue(std::string(40'000, 'n')));
    });
}

TEST_F(HostilePlaceTest, AFolderWithoutPermission) {
    ASSERT_EQ(chmod(home_.path().c_str(), 0777), 0);
    inChild([this] {
        if (geteuid() == 0) {
            ASSERT_EQ(setuid(ordinaryUser), 0);
        }
        const auto own = home_.path() / "own";
        std::filesystem::create_directories(own);
        std::filesystem::rename(own, home_.path() / "data");
        std::filesystem::create_directories(folder());
        ASSERT_EQ(chmod(folder().c_str(), 0500), 0);
        importInto(missingDays);
        EXPECT_TRUE(namesIn(folder()).empty());
        ASSERT_EQ(chmod(folder().c_str(), 0700), 0);
        std::filesystem::remove_all(home_.path() / "data");
        std::filesystem::remove_all(home_.path() / "config");
    });
}

TEST_F(HostilePlaceTest, APathOccupiedByAFolder) {
    std::filesystem::create_directories(folder() / "S_D_4711_20150616.txt/full");
    importInto(1);
    EXPECT_EQ(namesIn(folder()).size(), missingDays);
    EXPECT_TRUE(std::filesystem::exists(folder() / "S_D_4711_20150616.txt/full"));
}

TEST_F(HostilePlaceTest, AFileInPlaceOfTheFolder) {
    writeFile(folder(), "mine");
    importInto(missingDays);
    EXPECT_EQ(readFile(folder()), "mine");
}

TEST_F(HostilePlaceTest, ANameOfMoreThan255Bytes) {
    importInto(missingDays,
               [](const HttpRequest&) { return answerWithFile(std::string(300, 'n') + ".txt.gz", "text"); });
    EXPECT_TRUE(namesIn(folder()).empty());
}

TEST_F(HostilePlaceTest, ASymbolicLinkAtATarget) {
    const auto victim = home_.path() / "victim";
    writeFile(victim, "untouched");
    std::filesystem::create_directories(folder());
    const auto report = folder() / "S_D_4711_20150616.txt";
    std::filesystem::create_symlink(victim, report);
    importInto(0);
    EXPECT_EQ(readFile(victim), "untouched");
    EXPECT_FALSE(std::filesystem::is_symlink(report));
    EXPECT_EQ(readFile(report), "report of 20150616");
}

TEST_F(HostilePlaceTest, ASymbolicLinkInPlaceOfTheFolder) {
    const auto victim = home_.path() / "victim";
    writeFile(victim / "S_D_4711_20150616.txt", "untouched");
    std::filesystem::create_directories(folder().parent_path());
    std::filesystem::create_directory_symlink(victim, folder());
    importInto(missingDays);
    EXPECT_EQ(namesIn(victim), std::set<std::string>{"S_D_4711_20150616.txt"});
    EXPECT_EQ(readFile(victim / "S_D_4711_20150616.txt"), "untouched");
}

TEST_F(HostilePlaceTest, AFolderOfSomebodyElse) {
    if (geteuid() != 0) {
        // Only root can give folders away; for everybody else the topmost one is another's.
        PosixFileManager files("/");
        EXPECT_EQ(files.writeAtomically("/corvane-test", asBytes("x")), std::errc::operation_not_permitted);
        return;
    }
    // Where anybody may write, but none of the folders above it is another's.
    std::filesystem::create_directories(folder());
    ASSERT_EQ(chmod(folder().c_str(), 0777), 0);
    for (const auto& own : {home_.path(), home_.path() / "data", folder().parent_path()})
        ASSERT_EQ(chown(own.c_str(), ordinaryUser, ordinaryUser), 0);
    inChild([this] {
        ASSERT_EQ(setuid(ordinaryUser), 0);
        importInto(missingDays);
        EXPECT_TRUE(namesIn(folder()).empty());
        writeFile(folder() / "by hand", "the folder itself would take it");
        EXPECT_EQ(namesIn(folder()).size(), 1U);
    });
}

}  // namespace
}  // namespace corvane::test
