#include "app/published_update.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "platform/memory/scripted_http_client.h"

namespace corvane {
namespace {

using testing::SizeIs;
using namespace std::string_literals;

constexpr const char* goodFeed =
    R"({"version": "1.2", "updateNotes": "Notes", "downloadLink": "http://example.com/"})";

HttpAnswer answer(int statusCode, const std::string& body) {
    return {.response = HttpResponse{.statusCode = statusCode, .url = {}, .headers = {}},
            .body = toBytes(body),
            .errorDescription = {}};
}

std::optional<PublishedUpdate> parse(std::string_view text) {
    return parsePublishedUpdate(asBytes(text));
}

TEST(PublishedUpdateTest, ReadsTheThreeTexts) {
    const auto update =
        parse(R"({"downloadLink": "", "more": {"version": 3}, "updateNotes": "ä\n%@", "version": "1.2",})");
    ASSERT_TRUE(update);
    EXPECT_EQ(update->version, "1.2");
    EXPECT_EQ(update->updateNotes, "ä\n%@");
    EXPECT_EQ(update->downloadLink, "");
}

TEST(PublishedUpdateTest, ReadsTheFeedInOtherEncodings) {
    const std::string feed = goodFeed;
    std::string utf16 = "\xFF\xFE"s;
    std::string utf32;
    for (const char character : feed) {
        utf16 += {character, '\0'};
        utf32 += {'\0', '\0', '\0', character};
    }
    for (const std::string& text : {"\xEF\xBB\xBF" + feed, utf16, utf16.substr(2), utf32}) {
        const auto update = parse(text);
        ASSERT_TRUE(update) << testing::PrintToString(text);
        EXPECT_EQ(update->version, "1.2");
    }
}

TEST(PublishedUpdateTest, WhatIsNoObjectIsNoUpdate) {
    const std::string texts[] = {
        "",
        " ",
        "<html><body>404</body></html>",
        "[]",
        R"(["version"])",
        R"("version")",
        "1",
        "null",
        "{",
        R"({"version": "1.2")",
        R"({"version": "1.2", "updateNotes": "", "downloadLink": ""} more)",
        R"({'version': '1.2'})",
        "{\"version\": \"\xFF\", \"updateNotes\": \"\", \"downloadLink\": \"\"}",
        R"({"version": "\ud800", "updateNotes": "", "downloadLink": ""})",
        "\xFF\xFE{"s,
        std::string(100'000, '['),
    };
    for (const std::string& text : texts)
        EXPECT_FALSE(parse(text)) << testing::PrintToString(text.substr(0, 100));
}

TEST(PublishedUpdateDeathTest, AnObjectWithoutOneOfTheTextsIsFatal) {
    const struct {
        const char* feed;
        const char* message;
    } rows[] = {
        {"{}", "version"},
        {R"({"updateNotes": "n", "downloadLink": "l"})", "version"},
        {R"({"version": "0.1", "downloadLink": "l"})", "updateNotes"},
        {R"({"version": "0.1", "updateNotes": "n"})", "downloadLink"},
        {R"({"Version": "0.1", "updateNotes": "n", "downloadLink": "l"})", "version"},
        {R"({"version": 1.2, "updateNotes": "n", "downloadLink": "l"})", "version"},
        {R"({"version": null, "updateNotes": "n", "downloadLink": "l"})", "version"},
        {R"({"version": ["1"], "updateNotes": "n", "downloadLink": "l"})", "version"},
        {R"({"version": "1", "updateNotes": {}, "downloadLink": "l"})", "updateNotes"},
        {R"({"version": "1", "updateNotes": "n", "downloadLink": false})", "downloadLink"},
        {R"({"version": 1, "version": "1", "updateNotes": "n", "downloadLink": "l"})", "version"},
    };
    for (const auto& row : rows)
        EXPECT_DEATH(parse(row.feed), "the update feed has no text \"" + std::string(row.message) + '"')
            << row.feed;
}

TEST(PublishedUpdateTest, AsksTheHostForTheFeed) {
    ScriptedHttpClient client([](const HttpRequest&) { return answer(200, goodFeed); });
    ASSERT_TRUE(fetchPublishedUpdate(client, "updates.example:8080"));
    ASSERT_THAT(client.requests(), SizeIs(1));
    const HttpRequest request = client.requests()[0];
    EXPECT_EQ(request.method, "GET");
    EXPECT_EQ(request.url, "http://updates.example:8080/Plovance/update.json");
    EXPECT_TRUE(request.headers.empty());
    EXPECT_EQ(request.body, "");
    EXPECT_TRUE(request.followsRedirects);
    EXPECT_EQ(request.maximumBodySize, 1'048'576U);
}

TEST(PublishedUpdateTest, AHostThatMakesNoURLIsNotAsked) {
    ScriptedHttpClient client([](const HttpRequest&) { return answer(200, goodFeed); });
    for (const char* host : {"two words", "höst", "a|b", "%"})
        EXPECT_FALSE(fetchPublishedUpdate(client, host)) << host;
    EXPECT_THAT(client.requests(), SizeIs(0));
}

TEST(PublishedUpdateTest, TheStatusTellsWhetherThereIsADocument) {
    const struct {
        int statusCode;
        bool isRead;
    } rows[] = {
        {100, false}, {101, true},  {102, false}, {199, false}, {200, true},  {204, true},  {299, true},
        {300, true},  {302, true},  {304, true},  {399, true},  {400, false}, {401, true},  {402, false},
        {403, false}, {404, false}, {407, true},  {410, false}, {500, false}, {503, false}, {599, false},
    };
    for (const auto& row : rows) {
        ScriptedHttpClient client([&](const HttpRequest&) { return answer(row.statusCode, goodFeed); });
        EXPECT_EQ(fetchPublishedUpdate(client, "h").has_value(), row.isRead) << row.statusCode;
    }
}

TEST(PublishedUpdateTest, AnErrorPageIsNotReadEvenWhenItIsAnObject) {
    ScriptedHttpClient client([](const HttpRequest&) { return answer(404, R"({"error": "not found"})"); });
    EXPECT_FALSE(fetchPublishedUpdate(client, "h"));
}

TEST(PublishedUpdateTest, ATransportFailureAndAnEmptyBodyAreNoUpdate) {
    ScriptedHttpClient unreachable([](const HttpRequest&) {
        return HttpAnswer{.response = {}, .body = {}, .errorDescription = "down"};
    });
    EXPECT_FALSE(fetchPublishedUpdate(unreachable, "h"));
    ScriptedHttpClient cutOff([](const HttpRequest&) {
        return HttpAnswer{.response = HttpResponse{.statusCode = 200, .url = {}, .headers = {}},
                          .body = {},
                          .errorDescription = "too long"};
    });
    EXPECT_FALSE(fetchPublishedUpdate(cutOff, "h"));
    ScriptedHttpClient empty([](const HttpRequest&) { return answer(200, ""); });
    EXPECT_FALSE(fetchPublishedUpdate(empty, "h"));
}

}  // namespace
}  // namespace corvane
