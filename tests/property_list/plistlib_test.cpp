#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "platform/property_list/binary_property_list_writer.h"
#include "platform/property_list/property_list_reader.h"
#include "property_list/sample_property_list.h"

namespace corvane {
namespace {

class PlistlibTest : public testing::Test {
  protected:
    void SetUp() override {
        std::string pattern = (std::filesystem::temp_directory_path() / "corvane-plistlib-XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        folder_ = pattern;
    }

    void TearDown() override { std::filesystem::remove_all(folder_); }

    std::string path(const char* name) const { return (folder_ / name).string(); }

    void write(const std::string& path, const Bytes& content) {
        std::ofstream(path, std::ios::binary) << asText(content);
    }

    Bytes read(const std::string& path) {
        std::ifstream file(path, std::ios::binary);
        return Bytes(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }

    /// True when the script succeeded.
    bool runPlistlib(const std::string& arguments) {
        const std::string command = "'" PYTHON_PROGRAM "' '" PLISTLIB_SCRIPT "' " + arguments;
        return std::system(command.c_str()) == 0;
    }

    std::filesystem::path folder_;
};

TEST_F(PlistlibTest, ReadsWhatWeWrite) {
    write(path("ours"), writeBinaryPropertyList(samplePropertyList()));
    EXPECT_TRUE(runPlistlib("check " + path("ours")));
}

TEST_F(PlistlibTest, NoticesADifference) {
    PropertyListDictionary sample = samplePropertyList();
    sample.at("yes") = std::int64_t{1};
    write(path("ours"), writeBinaryPropertyList(sample));
    EXPECT_FALSE(runPlistlib("check " + path("ours") + " 2>/dev/null"));
}

TEST_F(PlistlibTest, WritesBinaryFilesThatWeRead) {
    ASSERT_TRUE(runPlistlib("make binary " + path("theirs")));
    EXPECT_EQ(readPropertyList(read(path("theirs"))), PropertyListValue(samplePropertyList()));
}

TEST_F(PlistlibTest, WritesXmlFilesThatWeRead) {
    ASSERT_TRUE(runPlistlib("make xml " + path("theirs")));
    EXPECT_EQ(readPropertyList(read(path("theirs"))), PropertyListValue(sampleXmlPropertyList()));
}

TEST_F(PlistlibTest, TurnsOurFileIntoXmlOfTheSameContent) {
    write(path("ours"), writeBinaryPropertyList(sampleXmlPropertyList()));
    ASSERT_TRUE(runPlistlib("convert xml " + path("ours") + " " + path("theirs")));
    EXPECT_EQ(readPropertyList(read(path("theirs"))), PropertyListValue(sampleXmlPropertyList()));
}

}  // namespace
}  // namespace corvane
