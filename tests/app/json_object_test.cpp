#include "app/json_object.h"

#include <gtest/gtest.h>

#include <string>

namespace corvane {
namespace {

TEST(JsonObjectTest, ReadsTheMembersOfTheTopLevelObject) {
    const JsonObject members =
        parseJsonObject(
            R"( {"text": "a\u00e4\ud83d\ude00", "yes": true, "number": -1.5e2, "other": null, "list": [1, "x"],
                             "object": {"text": "inner"}, "": 7} )")
            .value();
    EXPECT_EQ(members.at("text"), JsonMember(std::string("aä😀")));
    EXPECT_EQ(members.at("yes"), JsonMember(true));
    EXPECT_EQ(members.at("number"), JsonMember(-150.0));
    EXPECT_EQ(members.at("other"), JsonMember(OtherJson{}));
    EXPECT_EQ(members.at("list"), JsonMember(OtherJson{}));
    EXPECT_EQ(members.at("object"), JsonMember(OtherJson{}));
    EXPECT_EQ(members.at(""), JsonMember(7.0));
    EXPECT_EQ(members.size(), 7U);
}

TEST(JsonObjectTest, TheFirstOfSeveralMembersOfOneNameCounts) {
    EXPECT_EQ(parseJsonObject(R"({"a": 1, "a": 2})")->at("a"), JsonMember(1.0));
    EXPECT_EQ(parseJsonObject(R"({"a": [], "a": "text"})")->at("a"), JsonMember(OtherJson{}));
}

TEST(JsonObjectTest, LetsThroughWhatThePlatformLetsThrough) {
    const std::string texts[] = {
        "{}",
        " \t\r\n{}\n",
        "\xEF\xBB\xBF{}",
        R"({"a":1,})",
        R"({"a":[1,],})",
        R"({"a":[1 , ] , })",
        R"({"a":",]"})",
        R"({"a":"\",}"})",
        R"({"a":18446744073709551616000})",
        R"({"a":0e-9999999})",
        std::string(511, ' ') + "{\"a\":" + std::string(511, '[') + std::string(511, ']') + "}",
    };
    for (const std::string& text : texts)
        EXPECT_TRUE(parseJsonObject(text)) << text;
}

TEST(JsonObjectTest, RefusesEverythingElse) {
    const std::string texts[] = {
        "",
        " ",
        "[]",
        "1",
        "\"text\"",
        "true",
        "null",
        "{",
        "}",
        "{}{}",
        "{} x",
        R"({"a"})",
        R"({"a":})",
        R"({"a":,})",
        R"({,})",
        R"({,"a":1})",
        R"({"a":1,,})",
        R"({"a":[,1]})",
        R"({"a":[,]})",
        R"({"a":[1,,2]})",
        R"({'a':1})",
        R"({a:1})",
        R"({"a":NaN})",
        R"({"a":Infinity})",
        R"({"a":+1})",
        R"({"a":01})",
        R"({"a":0x10})",
        R"({"a":1.})",
        R"({"a":1e400})",
        R"({"a":-1e400})",
        R"({"a":123e-10000000})",
        R"({"a":"\ud800"})",
        R"({"a":"\ud800\u0041"})",
        R"({"a":"\x"})",
        "{\"a\":\"\n\"}",
        "{\"a\":\"\xFF\"}",
        "{\"a\":\"\xC0\x80\"}",
        "{/* comment */}",
        "{} // comment",
        std::string("{}\0", 3),
        std::string("{}\0garbage", 10),
        "{\"a\":" + std::string(512, '[') + std::string(512, ']') + "}",
        "{\"a\":" + std::string(1'000'000, '['),
    };
    for (const std::string& text : texts)
        EXPECT_FALSE(parseJsonObject(text)) << testing::PrintToString(text.substr(0, 100));
}

}  // namespace
}  // namespace corvane
