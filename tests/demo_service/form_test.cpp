#include "demo_service/form.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <string_view>

namespace corvane::demo {
namespace {

TEST(Form, DecodesValuesThatWereEncodedTwiceOrOnce) {
    struct Row {
        std::string_view sent;
        std::string_view meant;
    };
    const Row rows[] = {
        {"a%2520b", "a b"},          // the usual way: encoded twice
        {"a%40b", "a@b"},            // only the second pass touches it
        {"a%20b", "a b"},            // a client that encodes once
        {"50%252525", "50%25"},      // a percent sign and two digits, encoded twice
        {"100%2525", "100%"},        // a percent sign, encoded twice
        {"100%25", "100%"},          // and once
        {"x%2Bz", "x+z"},            // a plus sign
        {"x+z", "x+z"},              // is never a blank
        {"%25C3%25BC", "\xC3\xBC"},  // an umlaut, encoded twice
        {"a=b", "a=b"},              // splits only at the first
        {"%", "%"},                  // no escapes: they stay
        {"%4", "%4"},
        {"%zz", "%zz"},
        {"%+1", "%+1"},
        {"", ""},
    };
    for (const Row& row : rows) {
        const auto fields = fieldsOfForm("PASSWORD=" + std::string(row.sent));
        ASSERT_TRUE(fields.contains("PASSWORD")) << row.sent;
        EXPECT_EQ(fields.at("PASSWORD"), row.meant) << row.sent;
    }
}

TEST(Form, SplitsAtAmpersandsThatClientsLeaveBare) {
    const auto fields = fieldsOfForm("USERNAME=rock&roll&PASSWORD=x&PASSWORD=y&&=");
    const std::map<std::string, std::string, std::less<>> expected{
        {"USERNAME", "rock"}, {"PASSWORD", "x"}, {"", ""}};
    EXPECT_EQ(fields, expected);
}

TEST(Form, AnEmptyBodyHasNoFields) {
    EXPECT_TRUE(fieldsOfForm("").empty());
}

}  // namespace
}  // namespace corvane::demo
