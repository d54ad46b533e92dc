#include "core/autoingestion_form.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace corvane {
namespace {

using namespace std::string_view_literals;

AutoingestionForm plainForm() {
    AutoingestionForm form;
    form.username = "user";
    form.password = "secret";
    form.vendorID = "80012345";
    form.reportDate = "20150104";
    return form;
}

TEST(AutoingestionForm, WritesItsFieldsInOrder) {
    EXPECT_EQ(formBody(plainForm()),
              "USERNAME=user&PASSWORD=secret&VNDNUMBER=80012345&TYPEOFREPORT=Sales&DATETYPE=Daily"
              "&REPORTTYPE=Summary&REPORTDATE=20150104");
}

TEST(AutoingestionForm, KeepsEmptyFields) {
    EXPECT_EQ(formBody({}),
              "USERNAME=&PASSWORD=&VNDNUMBER=&TYPEOFREPORT=Sales&DATETYPE=Daily&REPORTTYPE=Summary"
              "&REPORTDATE=");
}

TEST(AutoingestionForm, SpellsTheDateTypesAsTheServiceDoes) {
    const std::string_view texts[] = {"Daily", "Weekly", "Monhtly", "Yearly"};
    for (unsigned ordinal = 0; ordinal < 4; ++ordinal) {
        AutoingestionForm form = plainForm();
        form.dateType = dateTypeOfOrdinal(ordinal);
        EXPECT_EQ(rawValue(form.dateType), texts[ordinal]);
        EXPECT_NE(formBody(form).find("&DATETYPE=" + std::string(texts[ordinal]) +
                                      "&REPORTTYPE=Summary&REPORTDATE=20150104"),
                  std::string::npos);
    }
    EXPECT_EQ(rawValue(AutoingestionToolTypeOfReport::Sales), "Sales");
    EXPECT_EQ(rawValue(AutoingestionToolReportType::Summary), "Summary");
}

TEST(AutoingestionForm, CountsOnlyTwoBitsOfADateTypesOrdinal) {
    for (const unsigned ordinal : {0U, 1U, 2U, 3U, 4U, 5U, 6U, 7U, 254U, 0xFFFFFFFFU})
        EXPECT_EQ(static_cast<unsigned>(dateTypeOfOrdinal(ordinal)), ordinal % 4) << ordinal;
}

struct ValueCase {
    std::string_view value;
    std::string_view onTheWire;
};

constexpr ValueCase valueCases[] = {
    {"", ""},
    {"a b", "a%2520b"},
    {"a+b", "a%2Bb"},
    {"50%", "50%2525"},
    {"100%25", "100%252525"},
    {"%20", "%252520"},
    {"%@ %1 %i", "%2525%40%2520%25251%2520%2525i"},  // no place marks
    {"a&b=c", "a&b=c"},                              // splits the form
    {"me@example.com", "me%40example.com"},
    {"#1", "%25231"},
    {"[x]", "%255Bx%255D"},
    {"it's \"so\"", "it%27s%2520%2522so%2522"},
    {"!$'()*+,/:;?@", "%21%24%27%28%29%2A%2B%2C%2F%3A%3B%3F%40"},
    {"<\\>^`{|}", "%253C%255C%253E%255E%2560%257B%257C%257D"},
    {"x~y_z-1.2", "x~y_z-1.2"},
    {"\u00E9", "%25C3%25A9"},
    {"M\u00FCller", "M%25C3%25BCller"},
    {"\u6F22\u5B57", "%25E6%25BC%25A2%25E5%25AD%2597"},
    {"\U0001F34E", "%25F0%259F%258D%258E"},
    {"\0"sv, "%2500"},
    {"a\r\nb\tc\x7F", "a%250D%250Ab%2509c%257F"},
};

std::string bodyWith(const std::string& username, const std::string& password, const std::string& vendorID) {
    std::string body = "USERNAME=" + username;
    body += "&PASSWORD=" + password;
    body += "&VNDNUMBER=" + vendorID;
    body += "&TYPEOFREPORT=Sales&DATETYPE=Daily&REPORTTYPE=Summary&REPORTDATE=20150104";
    return body;
}

TEST(AutoingestionForm, EscapesEveryTextTwice) {
    for (const ValueCase& test : valueCases) {
        SCOPED_TRACE(test.value);
        const std::string wire(test.onTheWire);
        AutoingestionForm form = plainForm();
        form.username = test.value;
        EXPECT_EQ(formBody(form), bodyWith(wire, "secret", "80012345"));
        form = plainForm();
        form.password = test.value;
        EXPECT_EQ(formBody(form), bodyWith("user", wire, "80012345"));
        form = plainForm();
        form.vendorID = test.value;
        EXPECT_EQ(formBody(form), bodyWith("user", "secret", wire));
    }
}

TEST(AutoingestionFormDeathTest, StopsAtTextsThatAreNoUtf8WithoutNamingThem) {
    AutoingestionForm form = plainForm();
    form.password = "\xFFsecret"sv;
    EXPECT_DEATH(formBody(form), "a text of the report request is not valid UTF-8");
}

}  // namespace
}  // namespace corvane
