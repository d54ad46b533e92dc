#include "platform/system/property_list_file_store.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <string>
#include <vector>

#include "platform/memory/in_memory_log.h"
#include "platform/memory/manual_clock.h"
#include "platform/property_list/binary_property_list_writer.h"
#include "platform/property_list/property_list_objects.h"
#include "platform/property_list/property_list_reader.h"
#include "support/simple_file_system.h"
#include "support/temporary_folder.h"

namespace corvane {
namespace {

using test::readFile;
using test::writeFile;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr mode_t permissions = 07777;

/// Root may do everything: hands the files to an ordinary user and acts as that one for a while. For anybody
/// else it does nothing.
class OrdinaryUser {
  public:
    explicit OrdinaryUser(const std::filesystem::path& files) : previous_(geteuid()) {
        if (previous_ != 0)
            return;
        chown(files);
        for (const auto& entry : std::filesystem::recursive_directory_iterator(files))
            chown(entry.path());
        EXPECT_EQ(seteuid(nobody), 0);
    }

    ~OrdinaryUser() { EXPECT_EQ(seteuid(previous_), 0); }

    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;

  private:
    static constexpr uid_t nobody = 65534;

    static void chown(const std::filesystem::path& path) {
        EXPECT_EQ(lchown(path.c_str(), nobody, static_cast<gid_t>(-1)), 0);
    }

    uid_t previous_;
};

class PropertyListFileStoreTest : public testing::Test {
  protected:
    PropertyListFileStoreTest() {
        const std::chrono::sys_days day =
            std::chrono::year_month_day(std::chrono::year(2015), std::chrono::January, std::chrono::day(4));
        clock_.set(day + std::chrono::hours(1) + std::chrono::minutes(2) + std::chrono::seconds(3));
    }

    PropertyListFileStore open() { return {path_, log_, clock_}; }

    void writeList(const PropertyListValue& value) {
        writeFile(path_, asText(writeBinaryPropertyList(value)));
    }

    std::optional<PropertyListValue> storedList() const { return readPropertyList(asBytes(readFile(path_))); }

    /// Sorted, hidden ones included.
    std::vector<std::string> filesInFolder() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder_))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }

    static mode_t modeOf(const std::filesystem::path& path) {
        struct stat status {};
        EXPECT_EQ(stat(path.c_str(), &status), 0);
        return status.st_mode & permissions;
    }

    test::TemporaryFolder home_;
    std::filesystem::path folder_ = home_.path() / "config" / "corvane";
    std::filesystem::path path_ = folder_ / "settings.plist";
    std::filesystem::path aside_ = folder_ / "settings.plist.unreadable-20150104T010203Z";
    InMemoryLog log_;
    ManualClock clock_;
};

TEST_F(PropertyListFileStoreTest, LookingAtAMissingFileMakesNothing) {
    PropertyListFileStore store = open();
    EXPECT_EQ(store.objectForKey("key"), std::nullopt);
    EXPECT_TRUE(store.synchronize());
    EXPECT_FALSE(std::filesystem::exists(home_.path() / "config"));
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(PropertyListFileStoreTest, IsABinaryPropertyListForTheUserOnlyWhateverTheUmask) {
    for (const mode_t mask : {0U, 022U, 0777U}) {
        const mode_t previous = umask(mask);
        PropertyListFileStore store = open();
        store.setObject("key", "value");
        const bool succeeded = store.synchronize();
        umask(previous);
        ASSERT_TRUE(succeeded) << mask;
        EXPECT_EQ(modeOf(path_), 0600U) << mask;
        EXPECT_EQ(modeOf(folder_), 0700U) << mask;
        EXPECT_TRUE(readFile(path_).starts_with("bplist00")) << mask;
        EXPECT_THAT(filesInFolder(), ElementsAre("settings.plist")) << mask;
        std::filesystem::remove_all(home_.path() / "config");
    }
}

TEST_F(PropertyListFileStoreTest, AWriteClosesAFileAndAFolderThatWereOpenToOthers) {
    writeList(PropertyListDictionary{{"key", "value"}});
    chmod(folder_.c_str(), 0755);
    chmod(path_.c_str(), 0644);
    PropertyListFileStore store = open();
    store.setObject("key", "new");
    ASSERT_TRUE(store.synchronize());
    EXPECT_EQ(modeOf(path_), 0600U);
    EXPECT_EQ(modeOf(folder_), 0700U);
}

TEST_F(PropertyListFileStoreTest, AFolderOfAnotherUserKeepsItsMode) {
    // Root may give the folder away; for everybody else the folder of all users' temporary files is
    // another's.
    std::filesystem::create_directories(folder_);
    chmod(folder_.c_str(), 0755);
    if (geteuid() == 0) {
        ASSERT_EQ(chown(folder_.c_str(), 12345, 12345), 0);
    } else {
        folder_ = home_.path().parent_path();
        path_ = home_.path().native() + ".plist";
    }
    const mode_t mode = modeOf(folder_);
    PropertyListFileStore store = open();
    store.setObject("key", "value");
    EXPECT_TRUE(store.synchronize());
    EXPECT_EQ(modeOf(path_), 0600U);
    EXPECT_EQ(modeOf(folder_), mode);
    std::filesystem::remove(path_);
}

TEST_F(PropertyListFileStoreTest, ReadsTheXmlFormToo) {
    writeFile(path_, "<plist><dict><key>key</key><string>value</string></dict></plist>");
    PropertyListFileStore store = open();
    EXPECT_EQ(store.objectForKey("key"), PropertyListValue("value"));
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(PropertyListFileStoreTest, AFileThatIsNoDictionaryIsMovedAsideAndLogged) {
    const std::vector<Bytes> contents = {
        {},
        toBytes("{\"json\": true}"),
        toBytes("bplist00"),
        writeBinaryPropertyList(PropertyListArray{"a list"}),
        writeBinaryPropertyList("a text"),
        toBytes("<plist><dict><key>secret</key></dict></plist>"),
        Bytes(maximumPropertyListFileSize + 1, ' '),
    };
    for (const Bytes& content : contents) {
        writeFile(path_, asText(content));
        InMemoryLog log;
        PropertyListFileStore store(path_, log, clock_);
        EXPECT_EQ(store.objectForKey("key"), std::nullopt);
        EXPECT_THAT(filesInFolder(), ElementsAre("settings.plist.unreadable-20150104T010203Z"));
        EXPECT_TRUE(readFile(aside_) == asText(content));
        EXPECT_THAT(log.lines(), ElementsAre("unreadable settings file moved to:" + aside_.string()));

        store.setObject("key", "value");
        EXPECT_TRUE(store.synchronize());
        EXPECT_EQ(storedList(), PropertyListValue(PropertyListDictionary{{"key", "value"}}));
        EXPECT_TRUE(readFile(aside_) == asText(content));
        std::filesystem::remove_all(folder_);
    }
}

TEST_F(PropertyListFileStoreTest, AFileThatWasMovedAsideEarlierIsNeverReplaced) {
    writeFile(aside_, "first");
    for (const char* content : {"second", "third"}) {
        writeFile(path_, content);
        open();
    }
    EXPECT_EQ(readFile(aside_), "first");
    EXPECT_EQ(readFile(aside_.string() + "-2"), "second");
    EXPECT_EQ(readFile(aside_.string() + "-3"), "third");
}

TEST_F(PropertyListFileStoreTest, ASimpleFileSystemKeepsWhatWasMovedAsideToo) {
    const test::SimpleFileSystem simple;
    writeFile(aside_, "first");
    writeFile(path_, "second");
    open();
    EXPECT_EQ(readFile(aside_), "first");
    EXPECT_EQ(readFile(aside_.string() + "-2"), "second");
    EXPECT_FALSE(std::filesystem::exists(path_));
}

TEST_F(PropertyListFileStoreTest, ADiskErrorMovesTheFileAside) {
    // A regular file to look at, but nothing can be read at its beginning.
    std::filesystem::create_directories(folder_);
    std::filesystem::create_symlink("/proc/self/mem", path_);
    PropertyListFileStore store = open();
    EXPECT_THAT(filesInFolder(), ElementsAre("settings.plist.unreadable-20150104T010203Z"));
    EXPECT_THAT(log_.lines(), ElementsAre("unreadable settings file moved to:" + aside_.string()));
    store.setObject("key", "value");
    EXPECT_TRUE(store.synchronize());
    EXPECT_EQ(storedList(), PropertyListValue(PropertyListDictionary{{"key", "value"}}));
}

TEST_F(PropertyListFileStoreTest, WhatIsNoFileIsMovedAside) {
    std::filesystem::create_directories(path_);
    open();
    EXPECT_TRUE(std::filesystem::is_directory(aside_));
    ASSERT_EQ(mkfifo(path_.c_str(), 0600), 0);
    open();
    EXPECT_TRUE(std::filesystem::is_fifo(aside_.string() + "-2"));
    std::filesystem::create_symlink("settings.plist", path_);
    open();
    EXPECT_TRUE(std::filesystem::is_symlink(aside_.string() + "-3"));
}

TEST_F(PropertyListFileStoreTest, AFileThatMayNotBeReadIsMovedAside) {
    writeList(PropertyListDictionary{{"key", "value"}});
    chmod(path_.c_str(), 0);
    const OrdinaryUser user(home_.path());
    PropertyListFileStore store = open();
    EXPECT_EQ(store.objectForKey("key"), std::nullopt);
    EXPECT_THAT(filesInFolder(), ElementsAre("settings.plist.unreadable-20150104T010203Z"));
}

TEST_F(PropertyListFileStoreTest, AFileInALockedFolderIsLeftAlone) {
    writeFile(path_, "not a property list");
    {
        const OrdinaryUser user(home_.path());
        chmod(folder_.c_str(), 0500);
        PropertyListFileStore store = open();
        store.setObject("key", "value");
        EXPECT_FALSE(store.synchronize());
        chmod(folder_.c_str(), 0700);
    }
    EXPECT_EQ(readFile(path_), "not a property list");
    EXPECT_THAT(filesInFolder(), ElementsAre("settings.plist"));
}

TEST_F(PropertyListFileStoreTest, AFileThatCannotBeMovedAsideIsNotOverwritten) {
    // No name is left to move it to: the name with the time is as long as a name can be.
    const std::string longName(255 - std::string_view(".unreadable-20150104T010203Z").size() + 1, 'x');
    path_ = folder_ / longName;
    writeFile(path_, "not a property list");
    PropertyListFileStore store = open();
    store.setObject("key", "value");
    EXPECT_FALSE(store.synchronize());
    EXPECT_FALSE(store.synchronize());
    EXPECT_EQ(store.objectForKey("key"), PropertyListValue("value"));
    EXPECT_EQ(readFile(path_), "not a property list");
    EXPECT_THAT(filesInFolder(), ElementsAre(longName));
    EXPECT_THAT(log_.lines(), ElementsAre("unreadable settings file cannot be moved:" + path_.string()));

    // As soon as it has gone, what was assigned meanwhile is written.
    std::filesystem::remove(path_);
    EXPECT_TRUE(store.synchronize());
    EXPECT_EQ(storedList(), PropertyListValue(PropertyListDictionary{{"key", "value"}}));
}

TEST_F(PropertyListFileStoreTest, ChangesOfOtherProgramsSurviveAndAreSeen) {
    writeList(PropertyListDictionary{{"ours", "1"}, {"changed", "1"}, {"removed", "1"}});
    PropertyListFileStore store = open();
    writeList(PropertyListDictionary{{"ours", "other"}, {"changed", "2"}, {"added", "2"}});
    EXPECT_EQ(store.objectForKey("changed"), PropertyListValue("1"));
    store.setObject("ours", "2");
    ASSERT_TRUE(store.synchronize());
    EXPECT_EQ(storedList(),
              PropertyListValue(PropertyListDictionary{{"ours", "2"}, {"changed", "2"}, {"added", "2"}}));
    EXPECT_EQ(store.objectForKey("changed"), PropertyListValue("2"));
    EXPECT_EQ(store.objectForKey("added"), PropertyListValue("2"));
    EXPECT_EQ(store.objectForKey("removed"), std::nullopt);
}

TEST_F(PropertyListFileStoreTest, AKeyThatWasWrittenBeforeBelongsToWhoChangesItNext) {
    PropertyListFileStore store = open();
    store.setObject("key", "ours");
    ASSERT_TRUE(store.synchronize());
    writeList(PropertyListDictionary{{"key", "theirs"}});
    store.setObject("other", "x");
    ASSERT_TRUE(store.synchronize());
    EXPECT_EQ(store.objectForKey("key"), PropertyListValue("theirs"));
}

TEST_F(PropertyListFileStoreTest, SynchronizeWithoutChangesOnlyReads) {
    PropertyListFileStore store = open();
    const std::string xml = "<plist><dict><key>key</key><true/></dict></plist>";
    writeFile(path_, xml);
    EXPECT_TRUE(store.synchronize());
    EXPECT_EQ(store.objectForKey("key"), PropertyListValue(true));
    EXPECT_EQ(readFile(path_), xml);
}

TEST_F(PropertyListFileStoreTest, AFileThatHasGoneIsWrittenWithAllThatWasKnown) {
    writeList(PropertyListDictionary{{"old", "1"}});
    PropertyListFileStore store = open();
    std::filesystem::remove_all(folder_);
    EXPECT_TRUE(store.synchronize());
    EXPECT_FALSE(std::filesystem::exists(path_));
    store.setObject("new", "2");
    ASSERT_TRUE(store.synchronize());
    EXPECT_EQ(storedList(), PropertyListValue(PropertyListDictionary{{"old", "1"}, {"new", "2"}}));
}

TEST_F(PropertyListFileStoreTest, AFileThatWasSpoiledMeanwhileIsMovedAsideAndWrittenAnew) {
    writeList(PropertyListDictionary{{"old", "1"}});
    PropertyListFileStore store = open();
    writeFile(path_, "spoiled");
    store.setObject("new", "2");
    ASSERT_TRUE(store.synchronize());
    EXPECT_EQ(readFile(aside_), "spoiled");
    EXPECT_EQ(storedList(), PropertyListValue(PropertyListDictionary{{"old", "1"}, {"new", "2"}}));
}

TEST_F(PropertyListFileStoreTest, AFailedWriteLeavesTheOldFileAndIsMadeUpForLater) {
    writeList(PropertyListDictionary{{"old", "1"}});
    PropertyListFileStore store = open();
    const std::string before = readFile(path_);
    // More than can be read again is not written.
    store.setObject("large", Bytes(maximumPropertyListFileSize, 1));
    EXPECT_FALSE(store.synchronize());
    EXPECT_EQ(readFile(path_), before);
    EXPECT_THAT(filesInFolder(), ElementsAre("settings.plist"));
    store.setObject("large", "small");
    EXPECT_TRUE(store.synchronize());
    EXPECT_EQ(storedList(), PropertyListValue(PropertyListDictionary{{"old", "1"}, {"large", "small"}}));
}

TEST_F(PropertyListFileStoreTest, ADiskThatTakesNoMoreLeavesTheOldFileAndNothingElse) {
    writeList(PropertyListDictionary{{"old", "1"}});
    PropertyListFileStore store = open();
    store.setObject("new", Bytes(100'000, 1));
    rlimit limit{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &limit), 0);
    const rlimit small{50'000, limit.rlim_max};
    const auto previous = std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &small);
    const bool succeeded = store.synchronize();
    setrlimit(RLIMIT_FSIZE, &limit);
    std::signal(SIGXFSZ, previous);
    EXPECT_FALSE(succeeded);
    EXPECT_EQ(storedList(), PropertyListValue(PropertyListDictionary{{"old", "1"}}));
    EXPECT_THAT(filesInFolder(), ElementsAre("settings.plist"));
    EXPECT_TRUE(store.synchronize());
}

TEST_F(PropertyListFileStoreTest, AFolderThatCannotBeMadeIsAFailedWrite) {
    writeFile(home_.path() / "config", "a file in the folder's place");
    PropertyListFileStore store = open();
    store.setObject("key", "value");
    EXPECT_FALSE(store.synchronize());
    EXPECT_EQ(store.objectForKey("key"), PropertyListValue("value"));
    EXPECT_EQ(readFile(home_.path() / "config"), "a file in the folder's place");
}

TEST_F(PropertyListFileStoreTest, WithoutFreeDescriptorsNothingIsMovedOrWritten) {
    writeList(PropertyListDictionary{{"old", "1"}});
    PropertyListFileStore store = open();
    store.setObject("new", "2");
    std::vector<int> descriptors;
    for (int descriptor = dup(0); descriptor >= 0; descriptor = dup(0))
        descriptors.push_back(descriptor);
    const bool succeeded = store.synchronize();
    for (const int descriptor : descriptors)
        close(descriptor);
    EXPECT_FALSE(succeeded);
    EXPECT_THAT(filesInFolder(), ElementsAre("settings.plist"));
    EXPECT_TRUE(store.synchronize());
    EXPECT_EQ(storedList(), PropertyListValue(PropertyListDictionary{{"old", "1"}, {"new", "2"}}));
}

TEST_F(PropertyListFileStoreTest, TheUsersLinkToAFileElsewhereIsReadAndReplacedOnWriting) {
    const std::filesystem::path elsewhere = home_.path() / "elsewhere.plist";
    const Bytes content = writeBinaryPropertyList(PropertyListDictionary{{"old", "1"}});
    writeFile(elsewhere, asText(content));
    std::filesystem::create_directories(folder_);
    std::filesystem::create_symlink(elsewhere, path_);
    PropertyListFileStore store = open();
    EXPECT_EQ(store.objectForKey("old"), PropertyListValue("1"));
    store.setObject("new", "2");
    ASSERT_TRUE(store.synchronize());
    EXPECT_FALSE(std::filesystem::is_symlink(path_));
    EXPECT_EQ(readFile(elsewhere), asText(content));
}

}  // namespace
}  // namespace corvane
