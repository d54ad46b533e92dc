#include "engine/report_storage.h"

#include <gtest/gtest.h>

#include <string>

#include "core/gzip_codec.h"
#include "platform/memory/failing_file_manager.h"
#include "platform/memory/in_memory_file_manager.h"
#include "platform/memory/in_memory_log.h"

namespace corvane {
namespace {

class ReportStorageTest : public testing::Test {
  protected:
    std::string pathOf(const std::string& name) const { return storage.reportPath() / name; }

    InMemoryFileManager files;
    InMemoryLog log;
    ReportStorage storage{files, log};
};

TEST_F(ReportStorageTest, KeepsReportsInToImportOfTheSharedContainer) {
    const auto container =
        files.containerForApplicationGroup("QX4ZT7M2P9.group.quessartolvinger.brindlecount");
    ASSERT_TRUE(container);
    EXPECT_EQ(storage.reportPath(), *container / "ToImport");
    EXPECT_EQ(storage.filePathForFilename("a.txt"), *container / "ToImport" / "a.txt");
}

TEST(ReportStorageDeathTest, CannotBeMadeWithoutTheSharedContainer) {
    InMemoryFileManager files;
    files.refuseContainers();
    InMemoryLog log;
    EXPECT_DEATH(ReportStorage(files, log), "shared folder");
}

TEST_F(ReportStorageTest, UnpacksTheReportAndStoresItUnderTheServicesName) {
    const auto path =
        storage.createTempFile("S_D_80012345_20150104.txt.gz", *gzippedData(toBytes("a\tb\r\n")));

    EXPECT_EQ(path, pathOf("S_D_80012345_20150104.txt"));
    EXPECT_EQ(files.contentsAtPath(*path), toBytes("a\tb\r\n"));
    EXPECT_EQ(log.lines(),
              (std::vector<std::string>{"result:S_D_80012345_20150104.txt.gz", "save to:" + *path}));
}

TEST_F(ReportStorageTest, TakesTheLastPartOfTheNameUpToItsFirstDot) {
    const struct {
        const char* delivered;
        const char* stored;
    } names[] = {
        {"S_D_80012345_20150104.txt.gz", "S_D_80012345_20150104.txt"},
        {"folder/S_D_80012345_20150104.txt", "S_D_80012345_20150104.txt"},
        {"/etc/passwd", "passwd.txt"},
        {"../../escape.sh", "escape.txt"},
        {"plain", "plain.txt"},
        {"x.y.z", "x.txt"},
        {"a/", ".txt"},
        {".hidden", ".txt"},
        {"..", ".txt"},
        {"", ".txt"},
        {"name with blanks.txt", "name with blanks.txt"},
        {"Umsätze.csv", "Umsätze.txt"},
    };
    for (const auto& name : names) {
        SCOPED_TRACE(name.delivered);
        EXPECT_EQ(storage.createTempFile(name.delivered, toBytes("text")), pathOf(name.stored));
        EXPECT_EQ(files.contentsAtPath(pathOf(name.stored)), toBytes("text"));
    }
}

TEST_F(ReportStorageTest, StoresTextThatWasNeverPackedAsItIs) {
    const std::string text = "\xEF\xBB\xBFProvider\tUnits\r\nAPPLE\t1\n\n";
    const auto path = storage.createTempFile("report.txt", toBytes(text));
    EXPECT_EQ(files.contentsAtPath(*path), toBytes(text));
}

TEST_F(ReportStorageTest, StoresAnEmptyReportAsAnEmptyFile) {
    const auto path = storage.createTempFile("report.txt", {});
    ASSERT_TRUE(path);
    EXPECT_EQ(files.contentsAtPath(*path), Bytes{});
}

TEST_F(ReportStorageTest, StoresNothingThatIsNotUtf8) {
    const std::string invalid[] = {"\xFF",        "\xC0\x80",  "\xED\xA0\x80", "\xF4\x90\x80\x80",
                                   "abc\xE2\x82", "latin \xE4"};
    for (const std::string& text : invalid) {
        SCOPED_TRACE(testing::PrintToString(text));
        EXPECT_EQ(storage.createTempFile("report.txt", toBytes(text)), std::nullopt);
    }
    EXPECT_EQ(files.contentsAtPath(pathOf("report.txt")), std::nullopt);
}

TEST_F(ReportStorageTest, FindsTheOneByteThatIsNotUtf8WhereverItIs) {
    constexpr std::size_t length = 40;
    for (std::size_t position = 0; position < length; ++position) {
        SCOPED_TRACE(position);
        std::string text(length, 'a');
        text[position] = '\xE4';
        EXPECT_EQ(storage.createTempFile("report.txt", toBytes(text)), std::nullopt);
        EXPECT_EQ(storage.createTempFile("report.txt", toBytes("\xC3\xA4 " + text)), std::nullopt);
    }
}

TEST_F(ReportStorageTest, StoresNamesOfAnyScriptWhereverTheyStand) {
    constexpr std::size_t length = 24;
    for (const std::string name : {"\xC3\xA4", "\xE2\x82\xAC", "\xF0\x9F\x93\x88", "\xC3\xA4\xC3\xB6"}) {
        for (std::size_t position = 0; position <= length; ++position) {
            SCOPED_TRACE(testing::PrintToString(name) + " at " + std::to_string(position));
            const std::string text = std::string(length, 'a').insert(position, name);
            const auto path = storage.createTempFile("report.txt", toBytes(text));
            ASSERT_TRUE(path);
            EXPECT_EQ(files.contentsAtPath(*path), toBytes(text));
        }
    }
}

TEST_F(ReportStorageTest, StoresNulAndNonCharactersWhichAreValidText) {
    const std::string text("a\0b\xEF\xBF\xBF", 6);
    const auto path = storage.createTempFile("report.txt", toBytes(text));
    ASSERT_TRUE(path);
    EXPECT_EQ(files.contentsAtPath(*path), toBytes(text));
}

TEST_F(ReportStorageTest, StoresATruncatedPackedReportWithTheZeroTailOfItsUnpacking) {
    std::string text;
    for (int i = 0; i < 2000; ++i)
        text += "line " + std::to_string(i * 7919) + "\n";
    Bytes packed = *gzippedData(toBytes(text));
    packed.resize(packed.size() / 2);

    const auto path = storage.createTempFile("report.txt.gz", packed);

    ASSERT_TRUE(path);
    const Bytes stored = files.contentsAtPath(*path).value();
    EXPECT_EQ(stored, gunzippedData(packed));
    EXPECT_EQ(stored.back(), 0);
}

TEST_F(ReportStorageTest, ReplacesAReportThatIsFetchedAgain) {
    storage.createTempFile("report.txt", toBytes("first"));
    const auto path = storage.createTempFile("report.txt", toBytes("second"));
    EXPECT_EQ(files.contentsAtPath(*path), toBytes("second"));
}

TEST_F(ReportStorageTest, ReturnsThePathAndLogsTheErrorWhenTheFileCannotBeWritten) {
    files.failWritesWith(std::make_error_code(std::errc::no_space_on_device));

    const auto path = storage.createTempFile("report.txt", toBytes("text"));

    EXPECT_EQ(path, pathOf("report.txt"));
    EXPECT_EQ(files.contentsAtPath(*path), std::nullopt);
    EXPECT_EQ(log.lines().back(),
              "ERROR while saving report:" + std::make_error_code(std::errc::no_space_on_device).message());
}

TEST_F(ReportStorageTest, FlushesReportsManyAtATime) {
    for (int number = 1; number < 64; ++number)
        storage.createTempFile(std::to_string(number) + ".txt", toBytes("x"));
    EXPECT_EQ(files.unflushedCount(), 63);
    storage.createTempFile("64.txt", toBytes("x"));
    EXPECT_EQ(files.unflushedCount(), 0);
    storage.createTempFile("65.txt", toBytes("x"));
    EXPECT_EQ(files.unflushedCount(), 1);
    storage.flush();
    EXPECT_EQ(files.unflushedCount(), 0);
}

TEST(ReportStorageFlushTest, LogsAFlushThatFailsAndHasNothingToFlushAfterIt) {
    InMemoryFileManager files;
    InMemoryLog log;
    // The look-up of the container, the folder and the report come first.
    FailingFileManager failing(files, 3, std::make_error_code(std::errc::io_error));
    ReportStorage storage(failing, log);
    storage.createTempFile("a.txt", toBytes("x"));
    storage.flush();
    EXPECT_EQ(log.lines().back(), "ERROR while saving report:Input/output error");
    const std::size_t lineCount = log.lines().size();
    storage.flush();
    EXPECT_EQ(log.lines().size(), lineCount);
    EXPECT_EQ(failing.operationCount(), 4U);
}

TEST_F(ReportStorageTest, FindsTheReportOfADate) {
    const Date date = startOfLocalDay(std::chrono::year{2015} / 1 / 4);
    EXPECT_EQ(storage.filePathForReport(date, SaleDataReportType::Monthly, "80012345"),
              pathOf("S_M_80012345_201501.txt"));
    EXPECT_FALSE(storage.reportExists(date, SaleDataReportType::Daily, "80012345"));

    storage.createTempFile("S_D_80012345_20150104.txt", toBytes("text"));

    EXPECT_TRUE(storage.reportExists(date, SaleDataReportType::Daily, "80012345"));
    EXPECT_FALSE(storage.reportExists(date, SaleDataReportType::Weekly, "80012345"));
}

}  // namespace
}  // namespace corvane
