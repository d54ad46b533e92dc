#include "app/resource_url.h"

#include <gtest/gtest.h>

namespace corvane {
namespace {

TEST(ResourceUrlTest, AFilesUrlLeadsBackToItsPath) {
    const char* const paths[] = {"/a/b.txt", "/with blank/100%/#1?.txt", "/Umsätze/日本.txt", "/a%20b", "/",
                                 "/\xFF"};
    for (const char* path : paths) {
        const ResourceUrl url = ResourceUrl::ofFile(path);
        EXPECT_TRUE(url.isFileUrl()) << path;
        EXPECT_EQ(url.filePath(), path) << url.text();
    }
    EXPECT_EQ(ResourceUrl::ofFile("/a b/ä.txt").text(), "file:///a%20b/%C3%A4.txt");
}

TEST(ResourceUrlTest, TellsFileUrlsFromOthers) {
    const struct {
        const char* text;
        bool isFileUrl;
        std::optional<std::filesystem::path> path;
    } urls[] = {
        {"file:///tmp/a.txt", true, "/tmp/a.txt"},
        {"FILE:///tmp/a.txt", true, "/tmp/a.txt"},
        {"file://localhost/tmp/a.txt", true, "/tmp/a.txt"},
        {"file:/tmp/a.txt", true, "/tmp/a.txt"},
        {"file:///tmp/a.txt?query#fragment", true, "/tmp/a.txt"},
        {"file:///bad%2", true, "/bad%2"},
        {"file:///bad%zz", true, "/bad%zz"},
        {"file:///bad%1z", true, "/bad%1z"},
        {"file://host", true, std::nullopt},
        {"file:", true, std::nullopt},
        {"http://example.com/a.txt", false, std::nullopt},
        {"files:///tmp/a.txt", false, std::nullopt},
        {"/tmp/a.txt", false, std::nullopt},
        {"", false, std::nullopt},
    };
    for (const auto& url : urls) {
        EXPECT_EQ(ResourceUrl(url.text).isFileUrl(), url.isFileUrl) << url.text;
        EXPECT_EQ(ResourceUrl(url.text).filePath(), url.path) << url.text;
    }
}

}  // namespace
}  // namespace corvane
