#include "platform/system/atomic_file.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <vector>

#include "support/simple_file_system.h"
#include "support/temporary_folder.h"

namespace corvane {
namespace {

using test::readFile;
using test::writeFile;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr AtomicFileOptions privateFile{.mode = AtomicFileMode::Private,
                                        .folder = AtomicFileFolder::MayBeLink};

class Umask {
  public:
    explicit Umask(mode_t mask) : previous_(umask(mask)) {}
    ~Umask() { umask(previous_); }
    Umask(const Umask&) = delete;
    Umask& operator=(const Umask&) = delete;

  private:
    mode_t previous_;
};

class AtomicFileTest : public ::testing::Test {
  protected:
    std::filesystem::path path(const std::string& name) const { return folder_.path() / name; }

    std::error_code write(const std::string& name, std::string_view content,
                          const AtomicFileOptions& options = {}) const {
        return writeFileAtomically(path(name), asBytes(content), options);
    }

    std::vector<std::string> names() const {
        std::vector<std::string> result;
        for (const auto& entry : std::filesystem::directory_iterator(folder_.path()))
            result.push_back(entry.path().filename().string());
        std::sort(result.begin(), result.end());
        return result;
    }

    mode_t mode(const std::string& name) const {
        struct stat status {};
        EXPECT_EQ(lstat(path(name).c_str(), &status), 0);
        return status.st_mode & 07777U;
    }

    /// Somebody else takes the name while the file is still being written.
    void expectToLeaveWhatCameInBetween(AtomicFile& late) const {
        ASSERT_FALSE(late.open(path("b"), free));
        writeFile(path("b"), "came in between");
        EXPECT_EQ(late.commit(), std::errc::file_exists);
        EXPECT_EQ(readFile(path("b")), "came in between");
    }

    static constexpr AtomicFileOptions free{.target = AtomicFileTarget::MustBeFree};

    const test::TemporaryFolder folder_;
};

TEST_F(AtomicFileTest, WritesAndReplacesAFile) {
    EXPECT_FALSE(write("a.txt", "old and longer"));
    EXPECT_EQ(readFile(path("a.txt")), "old and longer");
    EXPECT_FALSE(write("a.txt", std::string_view("n\0w", 3)));
    EXPECT_EQ(readFile(path("a.txt")), std::string("n\0w", 3));
    EXPECT_FALSE(write("a.txt", ""));
    EXPECT_EQ(readFile(path("a.txt")), "");
    EXPECT_THAT(names(), ElementsAre("a.txt"));
}

TEST_F(AtomicFileTest, ShowsNothingBeforeTheCommitAndLeavesNothingWithoutOne) {
    {
        AtomicFile file;
        ASSERT_FALSE(file.open(path("a.txt"), {}));
        ASSERT_FALSE(file.write(asBytes("half")));
        ASSERT_EQ(names().size(), 1U);
        EXPECT_THAT(names().front(), ::testing::MatchesRegex("\\.corvane-[0-9a-f]{16}\\.partial"));
    }
    EXPECT_THAT(names(), IsEmpty());
}

TEST_F(AtomicFileTest, GivesANewFileTheUsualMode) {
    const Umask umask(027);
    ASSERT_FALSE(write("a", ""));
    EXPECT_EQ(mode("a"), 0640U);
}

TEST_F(AtomicFileTest, KeepsTheModeOfAReplacedFile) {
    const Umask umask(077);
    for (const mode_t permissions : {0644U, 0666U, 0400U, 0U}) {
        writeFile(path("a"), "old");
        ASSERT_EQ(chmod(path("a").c_str(), permissions), 0);
        ASSERT_FALSE(write("a", "new"));
        EXPECT_EQ(mode("a"), permissions);
        ASSERT_EQ(unlink(path("a").c_str()), 0);
    }
}

TEST_F(AtomicFileTest, GivesAPrivateFileItsModeWhateverTheUmaskAndTheOldFileSay) {
    for (const mode_t mask : {0U, 022U, 0777U}) {
        const Umask umask(mask);
        writeFile(path("old"), "old");
        ASSERT_EQ(chmod(path("old").c_str(), 0666), 0);
        EXPECT_FALSE(write("old", "new", privateFile));
        EXPECT_EQ(mode("old"), 0600U);
        EXPECT_FALSE(write("new", "new", privateFile));
        EXPECT_EQ(mode("new"), 0600U);
        ASSERT_EQ(unlink(path("old").c_str()), 0);
        ASSERT_EQ(unlink(path("new").c_str()), 0);
    }
}

TEST_F(AtomicFileTest, ReplacesALinkAndLeavesItsTargetAlone) {
    writeFile(path("victim"), "victim");
    ASSERT_EQ(chmod(path("victim").c_str(), 0600), 0);
    std::filesystem::create_symlink("victim", path("a.txt"));
    const Umask umask(022);
    ASSERT_FALSE(write("a.txt", "new"));
    EXPECT_EQ(readFile(path("victim")), "victim");
    EXPECT_FALSE(std::filesystem::is_symlink(path("a.txt")));
    EXPECT_EQ(readFile(path("a.txt")), "new");
    EXPECT_EQ(mode("a.txt"), 0644U);
}

TEST_F(AtomicFileTest, RefusesAFolderAtTheTarget) {
    std::filesystem::create_directory(path("a.txt"));
    EXPECT_EQ(write("a.txt", "new"), std::errc::is_a_directory);
    EXPECT_THAT(names(), ElementsAre("a.txt"));
}

TEST_F(AtomicFileTest, RefusesANameThatIsNone) {
    EXPECT_EQ(write("", "x"), std::errc::invalid_argument);
    EXPECT_EQ(write(".", "x"), std::errc::invalid_argument);
    EXPECT_EQ(write("..", "x"), std::errc::invalid_argument);
    EXPECT_EQ(write(std::string("a\0b", 3), "x"), std::errc::invalid_argument);
    EXPECT_EQ(write(std::string(256, 'n'), "x"), std::errc::filename_too_long);
    EXPECT_THAT(names(), IsEmpty());
}

TEST_F(AtomicFileTest, TakesTheLongestNameThatThereIs) {
    const std::string longest(255, 'n');
    EXPECT_FALSE(write(longest, "x"));
    EXPECT_THAT(names(), ElementsAre(longest));
}

TEST_F(AtomicFileTest, FailsWithoutTheFolder) {
    EXPECT_EQ(write("missing/a.txt", "x"), std::errc::no_such_file_or_directory);
    writeFile(path("file"), "");
    EXPECT_EQ(write("file/a.txt", "x"), std::errc::not_a_directory);
}

TEST_F(AtomicFileTest, TakesANameAloneForAFileInTheCurrentFolder) {
    const std::filesystem::path previous = std::filesystem::current_path();
    std::filesystem::current_path(folder_.path());
    const std::error_code error = writeFileAtomically("a.txt", asBytes("x"), {});
    std::filesystem::current_path(previous);
    EXPECT_FALSE(error);
    EXPECT_EQ(readFile(path("a.txt")), "x");
}

TEST_F(AtomicFileTest, RefusesAFolderBehindALinkUnlessThatIsAllowed) {
    std::filesystem::create_directory(path("real"));
    std::filesystem::create_directory_symlink("real", path("link"));
    EXPECT_TRUE(write("link/a.txt", "x"));
    EXPECT_TRUE(std::filesystem::is_empty(path("real")));
    EXPECT_FALSE(write("link/a.txt", "x", privateFile));
    EXPECT_EQ(readFile(path("real/a.txt")), "x");
}

TEST_F(AtomicFileTest, RefusesTheFolderOfAnotherUser) {
    // Root may give the folder away; for everybody else the root folder is another's.
    if (geteuid() == 0) {
        std::filesystem::create_directory(path("other"));
        ASSERT_EQ(chown(path("other").c_str(), 12345, 12345), 0);
        EXPECT_EQ(write("other/a.txt", "x"), std::errc::operation_not_permitted);
        EXPECT_TRUE(std::filesystem::is_empty(path("other")));
    } else {
        EXPECT_EQ(writeFileAtomically("/corvane-test", asBytes("x"), {}), std::errc::operation_not_permitted);
    }
}

TEST_F(AtomicFileTest, LeavesAnExistingFileWhereTheTargetMustBeFree) {
    EXPECT_FALSE(write("a", "first", free));
    EXPECT_EQ(write("a", "second", free), std::errc::file_exists);

    AtomicFile late;
    expectToLeaveWhatCameInBetween(late);
    EXPECT_EQ(readFile(path("a")), "first");
}

TEST_F(AtomicFileTest, LeavesAnExistingFileOnASimpleFileSystemToo) {
    const test::SimpleFileSystem simple;
    EXPECT_FALSE(write("a", "first", free));
    AtomicFile late;
    expectToLeaveWhatCameInBetween(late);
    EXPECT_EQ(readFile(path("a")), "first");
    EXPECT_EQ(names().size(), 3U) << "the late one's own file, until it goes";
}

TEST_F(AtomicFileTest, KeepsTheOldFileWhenTheDiskTakesNoMore) {
    ASSERT_FALSE(write("a.txt", "old"));
    // A limit on the size of files stands in for a full disk: the write stops half way, then fails.
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{1000, 1000};
        setrlimit(RLIMIT_FSIZE, &limit);
        const std::error_code error =
            writeFileAtomically(path("a.txt"), asBytes(std::string(100'000, 'x')), {});
        _exit(error == std::errc::file_too_large ? 7 : 1);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(WEXITSTATUS(status), 7);
    EXPECT_EQ(readFile(path("a.txt")), "old");
    EXPECT_THAT(names(), ElementsAre("a.txt"));
}

TEST_F(AtomicFileTest, RemovesTheLeftOversOfAKilledProcess) {
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        AtomicFile file;
        if (file.open(path("a.txt"), {}) || file.write(asBytes("half")))
            _exit(1);
        raise(SIGKILL);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status));
    ASSERT_EQ(names().size(), 1U);
    removeLeftOvers(folder_.path());
    EXPECT_THAT(names(), IsEmpty());
}

TEST_F(AtomicFileTest, RemovesNothingElse) {
    const std::string pattern = ".corvane-0123456789abcdef.partial";
    writeFile(path("a.txt"), "");
    writeFile(path(".corvane-0123456789abcde.partial"), "");
    writeFile(path(".corvane-0123456789abcdeg.partial"), "");
    writeFile(path(".corvane-0123456789abcdef.partial.txt"), "");
    writeFile(path("x" + pattern), "");
    writeFile(path(".corvane+0123456789abcdef.partial"), "");
    writeFile(path(".corvane-0123456789abcdef.partiaL"), "");
    std::filesystem::create_directory(path(pattern));
    std::filesystem::create_symlink("a.txt", path(".corvane-0123456789abcde0.partial"));
    if (geteuid() == 0) {  // only root can give files away
        const std::string anothers = ".corvane-0123456789abcde1.partial";
        writeFile(path(anothers), "");
        ASSERT_EQ(chown(path(anothers).c_str(), 12345, 12345), 0);
    }
    const std::vector<std::string> before = names();
    removeLeftOvers(folder_.path());
    removeLeftOvers(path("missing"));
    EXPECT_EQ(names(), before);
}

}  // namespace
}  // namespace corvane
