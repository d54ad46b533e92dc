#include "import_command/report_folder.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>

#include <cstdlib>

#include "support/temporary_folder.h"
#include "support/user_database_double.h"

namespace corvane::import_command {
namespace {

using test::TemporaryFolder;
using test::writeFile;
using testing::ElementsAre;
using testing::IsEmpty;

class ReportFolderTest : public testing::Test {
  protected:
    std::vector<std::string> changed() const { return changedFiles(before_, stateOf(folder_.path())); }
    void remember() { before_ = stateOf(folder_.path()); }
    std::filesystem::path in(const std::string& name) const { return folder_.path() / name; }

    TemporaryFolder folder_;
    FolderState before_;
};

TEST_F(ReportFolderTest, FindsNewFilesInOrderOfTheirNames) {
    writeFile(in("old.txt"), "old");
    remember();
    writeFile(in("b.txt"), "b");
    writeFile(in("a.txt"), "a");
    writeFile(in("Z.txt"), "z");
    EXPECT_THAT(changed(), ElementsAre("Z.txt", "a.txt", "b.txt"));
}

TEST_F(ReportFolderTest, FindsAFileReplacedByOneOfTheSameSizeAndTime) {
    writeFile(in("a.txt"), "old");
    remember();
    struct stat status {};
    ASSERT_EQ(stat(in("a.txt").c_str(), &status), 0);
    writeFile(in(".new"), "new");
    const timespec times[2] = {status.st_atim, status.st_mtim};
    ASSERT_EQ(utimensat(AT_FDCWD, in(".new").c_str(), times, 0), 0);
    std::filesystem::rename(in(".new"), in("a.txt"));
    EXPECT_THAT(changed(), ElementsAre("a.txt"));
}

TEST_F(ReportFolderTest, FindsAFileRewrittenInPlaceWithinTheSecond) {
    writeFile(in("a.txt"), "same");
    remember();
    struct stat status {};
    ASSERT_EQ(stat(in("a.txt").c_str(), &status), 0);
    timespec times[2] = {status.st_atim, status.st_mtim};
    times[1].tv_nsec = times[1].tv_nsec == 0 ? 1 : times[1].tv_nsec - 1;
    ASSERT_EQ(utimensat(AT_FDCWD, in("a.txt").c_str(), times, 0), 0);
    EXPECT_THAT(changed(), ElementsAre("a.txt"));
}

TEST_F(ReportFolderTest, LeavesOutWhatIsNoReport) {
    remember();
    writeFile(in(".a.txt.part"), "half");
    writeFile(in("folder/inside.txt"), "inside");
    std::filesystem::create_symlink("folder/inside.txt", in("link.txt"));
    ASSERT_EQ(mkfifo(in("pipe.txt").c_str(), 0600), 0);
    EXPECT_THAT(changed(), IsEmpty());
}

TEST_F(ReportFolderTest, LeavesOutFilesThatWentOrStayed) {
    writeFile(in("gone.txt"), "gone");
    writeFile(in("same.txt"), "same");
    remember();
    std::filesystem::remove(in("gone.txt"));
    EXPECT_THAT(changed(), IsEmpty());
}

TEST_F(ReportFolderTest, TakesAMissingFolderForAnEmptyOne) {
    EXPECT_THAT(stateOf(in("missing")), IsEmpty());
    writeFile(in("a-file"), "x");
    EXPECT_THAT(stateOf(in("a-file")), IsEmpty());
}

TEST(ReportFolderPathTest, LiesInTheSharedContainer) {
    setenv("XDG_DATA_HOME", "/somewhere/data", 1);
    EXPECT_EQ(reportFolder(), "/somewhere/data/QX4ZT7M2P9.group.quessartolvinger.brindlecount/ToImport");
    setenv("XDG_DATA_HOME", "relative", 1);
    setenv("HOME", "/home/somebody", 1);
    EXPECT_EQ(reportFolder(),
              "/home/somebody/.local/share/QX4ZT7M2P9.group.quessartolvinger.brindlecount/ToImport");
}

TEST(ReportFolderPathTest, IsAbsentForAUserWithoutAHome) {
    unsetenv("XDG_DATA_HOME");
    unsetenv("HOME");
    const test::UserDatabaseDouble database(std::nullopt);
    EXPECT_EQ(reportFolder(), std::nullopt);
}

}  // namespace
}  // namespace corvane::import_command
