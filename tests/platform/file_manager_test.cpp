#include "platform/file_manager.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <functional>
#include <iterator>
#include <memory>
#include <string>

#include "platform/memory/failing_file_manager.h"
#include "platform/memory/in_memory_file_manager.h"
#include "platform/system/posix_file_manager.h"
#include "support/temporary_folder.h"

namespace corvane {
namespace {

namespace fs = std::filesystem;

/// A file manager, a folder in which it may work, and a way of reading what it wrote.
class Place {
  public:
    virtual ~Place() = default;
    virtual FileManager& files() = 0;
    virtual fs::path folder() = 0;
    virtual std::string read(const fs::path& path) = 0;
};

class PlaceOnDisk final : public Place {
  public:
    FileManager& files() override { return files_; }
    fs::path folder() override { return folder_.path(); }
    std::string read(const fs::path& path) override { return test::readFile(path); }

  private:
    const test::TemporaryFolder folder_;
    PosixFileManager files_{folder_.path() / "share"};
};

class PlaceInMemory final : public Place {
  public:
    PlaceInMemory() { files_.createDirectoryAtPath(folder()); }
    FileManager& files() override { return files_; }
    fs::path folder() override { return "/home/user"; }
    std::string read(const fs::path& path) override {
        return std::string(asText(files_.contentsAtPath(path).value_or(Bytes())));
    }

  private:
    InMemoryFileManager files_;
};

using MakePlace = std::function<std::unique_ptr<Place>()>;

/// What holds for every file manager.
class FileManagerTest : public ::testing::TestWithParam<MakePlace> {
  protected:
    fs::path path(const std::string& name) const { return place_->folder() / name; }
    fs::path place() const { return place_->folder(); }
    FileManager& files() const { return place_->files(); }
    std::string read(const std::string& name) const { return place_->read(path(name)); }
    std::error_code write(const std::string& name, std::string_view content) const {
        return files().writeAtomically(path(name), asBytes(content));
    }

  private:
    const std::unique_ptr<Place> place_ = GetParam()();
};

INSTANTIATE_TEST_SUITE_P(OnDisk, FileManagerTest,
                         ::testing::Values([] { return std::make_unique<PlaceOnDisk>(); }));
INSTANTIATE_TEST_SUITE_P(InMemory, FileManagerTest,
                         ::testing::Values([] { return std::make_unique<PlaceInMemory>(); }));

TEST_P(FileManagerTest, FlushesAFolderThatIsThere) {
    ASSERT_FALSE(write("a", "content"));
    EXPECT_FALSE(files().synchronize(place()));
    EXPECT_EQ(files().synchronize(path("missing")), std::errc::no_such_file_or_directory);
    EXPECT_EQ(read("a"), "content");
}

TEST_P(FileManagerTest, WritesAndReplacesFiles) {
    EXPECT_FALSE(files().fileExistsAtPath(path("a.txt")));
    EXPECT_FALSE(write("a.txt", "old"));
    EXPECT_TRUE(files().fileExistsAtPath(path("a.txt")));
    EXPECT_FALSE(write("a.txt", std::string_view("n\0w", 3)));
    EXPECT_EQ(read("a.txt"), std::string("n\0w", 3));
}

TEST_P(FileManagerTest, MakesFoldersWithAllAboveThem) {
    EXPECT_FALSE(files().createDirectoryAtPath(path("a/b/c")));
    EXPECT_TRUE(files().fileExistsAtPath(path("a/b/c")));
    EXPECT_FALSE(files().createDirectoryAtPath(path("a/b/c")));
    EXPECT_FALSE(files().createDirectoryAtPath(path("a/b/d/")));
    EXPECT_FALSE(write("a/b/d/file", "x"));
    EXPECT_EQ(read("a/b/d/file"), "x");
}

TEST_P(FileManagerTest, MakesNoFolderWhereAFileIs) {
    ASSERT_FALSE(write("a", "x"));
    EXPECT_TRUE(files().createDirectoryAtPath(path("a")));
    EXPECT_TRUE(files().createDirectoryAtPath(path("a/b")));
    EXPECT_EQ(read("a"), "x");
}

TEST_P(FileManagerTest, WritesNoFileWhereNoneCanBe) {
    ASSERT_FALSE(files().createDirectoryAtPath(path("folder")));
    ASSERT_FALSE(write("file", "x"));
    EXPECT_EQ(write("folder", "x"), std::errc::is_a_directory);
    EXPECT_EQ(write("missing/file", "x"), std::errc::no_such_file_or_directory);
    EXPECT_EQ(write("file/file", "x"), std::errc::not_a_directory);
    EXPECT_EQ(write("folder/", "x"), std::errc::invalid_argument);
    EXPECT_EQ(write("folder/..", "x"), std::errc::invalid_argument);
    EXPECT_EQ(write(std::string("a\0b", 3), "x"), std::errc::invalid_argument);
    EXPECT_EQ(write(std::string(256, 'n'), "x"), std::errc::filename_too_long);
    EXPECT_EQ(read("file"), "x");
}

TEST_P(FileManagerTest, CopiesAFileOnlyToAFreePlace) {
    ASSERT_FALSE(write("a", "content"));
    EXPECT_FALSE(files().copyItem(path("a"), path("b")));
    EXPECT_EQ(read("b"), "content");
    EXPECT_EQ(read("a"), "content");
    ASSERT_FALSE(write("c", "other"));
    EXPECT_EQ(files().copyItem(path("a"), path("c")), std::errc::file_exists);
    EXPECT_EQ(read("c"), "other");
}

TEST_P(FileManagerTest, CopiesOnlyFilesThatAreThere) {
    ASSERT_FALSE(files().createDirectoryAtPath(path("folder")));
    ASSERT_FALSE(write("a", "content"));
    EXPECT_EQ(files().copyItem(path("missing"), path("b")), std::errc::no_such_file_or_directory);
    EXPECT_EQ(files().copyItem(path("folder"), path("b")), std::errc::is_a_directory);
    EXPECT_EQ(files().copyItem(path("a"), path("nowhere/b")), std::errc::no_such_file_or_directory);
    EXPECT_FALSE(files().fileExistsAtPath(path("b")));
}

TEST_P(FileManagerTest, MakesTheContainerOnFirstLookUp) {
    const auto container = files().containerForApplicationGroup(applicationGroupIdentifier);
    ASSERT_TRUE(container);
    EXPECT_TRUE(files().fileExistsAtPath(*container));
    EXPECT_EQ(container->filename(), applicationGroupIdentifier);
    EXPECT_FALSE(files().writeAtomically(*container / "a", asBytes("x")));
    EXPECT_EQ(files().containerForApplicationGroup(applicationGroupIdentifier), container);
}

TEST_P(FileManagerTest, HasNoContainerUnderANameThatLeadsElsewhere) {
    for (const std::string_view identifier : {"", ".", "..", "a/b", "../a"})
        EXPECT_FALSE(files().containerForApplicationGroup(identifier)) << identifier;
}

class PosixFileManagerTest : public ::testing::Test {
  protected:
    fs::path path(const std::string& name) const { return folder_.path() / name; }

    static mode_t mode(const fs::path& path) {
        struct stat status {};
        EXPECT_EQ(stat(path.c_str(), &status), 0);
        return status.st_mode & 07777U;
    }

    const test::TemporaryFolder folder_;
    PosixFileManager files_{folder_.path() / "local" / "share"};
};

TEST_F(PosixFileManagerTest, MakesPrivateContainersUnderAnyUmask) {
    const mode_t previous = umask(0777);
    const auto container = files_.containerForApplicationGroup("group");
    umask(previous);
    ASSERT_EQ(container, path("local/share/group"));
    EXPECT_EQ(mode(*container), 0700U);
    EXPECT_EQ(mode(path("local")), 0700U);
}

TEST_F(PosixFileManagerTest, HasNoContainerWhereNoneCanBeMade) {
    test::writeFile(path("local"), "in the way");
    EXPECT_FALSE(files_.containerForApplicationGroup("group"));
    EXPECT_FALSE(PosixFileManager(std::nullopt).containerForApplicationGroup("group"));
}

TEST_F(PosixFileManagerTest, TakesNobodyElsesFolderForTheContainer) {
    // Root may give the folder away; for everybody else the folder of the system's programs is another's.
    if (geteuid() == 0) {
        const auto container = files_.containerForApplicationGroup("group");
        ASSERT_TRUE(container);
        ASSERT_EQ(chown(container->c_str(), 12345, 12345), 0);
        EXPECT_FALSE(files_.containerForApplicationGroup("group"));
    } else {
        EXPECT_FALSE(PosixFileManager("/").containerForApplicationGroup("usr"));
    }
}

TEST_F(PosixFileManagerTest, SeesAFileBehindALinkButNoneBehindABrokenOne) {
    test::writeFile(path("a"), "");
    fs::create_symlink("a", path("link"));
    fs::create_symlink("missing", path("broken"));
    EXPECT_TRUE(files_.fileExistsAtPath(path("link")));
    EXPECT_FALSE(files_.fileExistsAtPath(path("broken")));
}

TEST_F(PosixFileManagerTest, WritesNothingThroughALinkInPlaceOfTheFolder) {
    fs::create_directory(path("victim"));
    fs::create_directory_symlink("victim", path("ToImport"));
    EXPECT_TRUE(files_.writeAtomically(path("ToImport/a.txt"), asBytes("x")));
    EXPECT_TRUE(fs::is_empty(path("victim")));
}

TEST_F(PosixFileManagerTest, CopiesNeitherThroughLinksNorFromPipes) {
    test::writeFile(path("a"), "content");
    fs::create_symlink("a", path("link"));
    ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);
    EXPECT_TRUE(files_.copyItem(path("link"), path("b")));
    EXPECT_TRUE(files_.copyItem(path("pipe"), path("b")));
    fs::create_symlink("victim", path("dangling"));
    EXPECT_EQ(files_.copyItem(path("a"), path("dangling")), std::errc::file_exists);
    EXPECT_FALSE(fs::exists(path("b")));
    EXPECT_FALSE(fs::exists(path("victim")));
}

TEST_F(PosixFileManagerTest, CopiesAFileLargerThanItsBuffer) {
    std::string content;
    for (int number = 0; content.size() < 200'000; ++number)
        content += std::to_string(number);
    test::writeFile(path("a"), content);
    ASSERT_FALSE(files_.copyItem(path("a"), path("b")));
    EXPECT_EQ(test::readFile(path("b")), content);
}

TEST_F(PosixFileManagerTest, LeavesNoCopyOfAFileThatCannotBeRead) {
    // A regular file to look at, but nothing can be read at its beginning.
    EXPECT_EQ(files_.copyItem("/proc/self/mem", path("copy")), std::errc::io_error);
    EXPECT_TRUE(fs::is_empty(folder_.path()));
}

TEST_F(PosixFileManagerTest, LeavesNoCopyThatIsNotWhole) {
    test::writeFile(path("a"), std::string(200'000, 'x'));
    // A limit on the size of files stands in for a full disk.
    rlimit limit{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &limit), 0);
    const rlimit small{100'000, limit.rlim_max};
    const auto previous = signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &small);
    const std::error_code error = files_.copyItem(path("a"), path("copy"));
    setrlimit(RLIMIT_FSIZE, &limit);
    signal(SIGXFSZ, previous);
    EXPECT_EQ(error, std::errc::file_too_large);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder_.path()), fs::directory_iterator()), 1);
}

TEST(FailingFileManagerTest, FailsTheChosenOperationOnly) {
    InMemoryFileManager files;
    FailingFileManager failing(files, 1);
    EXPECT_FALSE(failing.createDirectoryAtPath("/a"));
    EXPECT_TRUE(failing.fileExistsAtPath("/a"));
    EXPECT_EQ(failing.writeAtomically("/a/file", asBytes("x")), std::errc::no_space_on_device);
    EXPECT_FALSE(failing.fileExistsAtPath("/a/file"));
    EXPECT_FALSE(failing.writeAtomically("/a/file", asBytes("x")));
    EXPECT_FALSE(failing.copyItem("/a/file", "/a/copy"));
    EXPECT_TRUE(failing.containerForApplicationGroup("group"));
    EXPECT_EQ(failing.operationCount(), 5U);
}

TEST(FailingFileManagerTest, FindsNoContainerWhenTheLookUpIsToFail) {
    InMemoryFileManager files;
    FailingFileManager failing(files, 0);
    EXPECT_FALSE(failing.containerForApplicationGroup("group"));
}

TEST(InMemoryFileManagerTest, ListsAFolder) {
    InMemoryFileManager files;
    ASSERT_FALSE(files.createDirectoryAtPath("/a/sub"));
    ASSERT_FALSE(files.writeAtomically("/a/2", asBytes("")));
    ASSERT_FALSE(files.writeAtomically("/a/1", asBytes("")));
    EXPECT_EQ(files.contentsOfDirectory("/a"), (std::vector<std::string>{"1", "2", "sub"}));
    EXPECT_EQ(files.contentsOfDirectory("/"), (std::vector<std::string>{"a"}));
    EXPECT_TRUE(files.contentsOfDirectory("/missing").empty());
}

TEST(InMemoryFileManagerTest, RefusesWritesAndKeepsTheOldContentWhileTheyAreToFail) {
    InMemoryFileManager files;
    ASSERT_FALSE(files.writeAtomically("/file", asBytes("old")));
    files.failWritesWith(std::make_error_code(std::errc::no_space_on_device));
    EXPECT_EQ(files.writeAtomically("/file", asBytes("new")), std::errc::no_space_on_device);
    EXPECT_EQ(files.writeAtomically("/missing/file", asBytes("new")), std::errc::no_such_file_or_directory);
    EXPECT_EQ(files.contentsAtPath("/file"), toBytes("old"));
    files.failWritesWith({});
    EXPECT_FALSE(files.writeAtomically("/file", asBytes("new")));
    EXPECT_EQ(files.contentsAtPath("/file"), toBytes("new"));
}

TEST(InMemoryFileManagerTest, CanBeWithoutContainers) {
    InMemoryFileManager files;
    files.refuseContainers();
    EXPECT_FALSE(files.containerForApplicationGroup(applicationGroupIdentifier));
}

}  // namespace
}  // namespace corvane
