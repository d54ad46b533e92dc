#include "settings_window/vendor_id.h"

#include <gtest/gtest.h>

#include <string>

namespace corvane {
namespace {

using namespace std::string_literals;

TEST(VendorIDTest, AcceptsWholeNumbersOnly) {
    const struct {
        std::string text;
        bool isNumeric;
    } rows[] = {
        {"8123", true},
        {"0", true},
        {"007", true},
        {"", false},
        {" ", false},
        {" \t\n", false},
        {" 42", true},
        {"42 ", true},
        {"\t42", true},
        {"42\n", true},
        {"42\r\n", true},
        {"\v\f42", true},
        {" 777 ", true},
        {"+42", true},
        {"-42", true},
        {"- 42", true},
        {" +\t42 ", true},
        {"+-4", false},
        {"--4", false},
        {"+", false},
        {"- ", false},
        {"42-", false},
        {"42+", false},
        {"99999999999999999999", true},
        {"-99999999999999999999", true},
        {std::string(10'000, '9'), true},
        {"4a2", false},
        {"abc", false},
        {"a42", false},
        {"42a", false},
        {"4.2", false},
        {"4,2", false},
        {"1,000", false},
        {"4 2", false},
        {"0x10", false},
        {"1e3", false},
        {"42\0"s, false},
        {"\0"s, false},
        {"\u008542", true},        // next line
        {"\u00A042", true},        // no-break space
        {"42\u1680", true},        // ogham space
        {"\u2000\u200B42", true},  // first and last of the spaces of fixed width
        {"42\u2028\u2029", true},  // line and paragraph separator
        {"\u202F42\u205F", true},
        {"\u300042", true},       // ideographic space
        {"\u200C42", false},      // zero-width non-joiner
        {"\uFEFF42", false},      // byte order mark
        {"\u180E42", false},      // mongolian vowel separator
        {"\uFF14\uFF12", true},   // fullwidth
        {"\u0664\u0662", true},   // arabic-indic
        {"\u096A\u0968", true},   // devanagari
        {"\uABF9", true},         // last of the last block but one
        {"\uABFA", false},        // just after it
        {"4\uFF12", true},        // mixed
        {"\u00B2", false},        // superscript two
        {"\u216B", false},        // roman twelve
        {"\u4E8C", false},        // han two
        {"\u2460", false},        // circled one
        {"\u2212\u0034", false},  // minus sign, not the hyphen
        {"\U0001D7D2", false},    // mathematical digit, beyond the basic plane
        {"42\xFF", false},
        {"\xC2", false},
    };
    for (const auto& row : rows)
        EXPECT_EQ(isNumericVendorID(row.text), row.isNumeric) << testing::PrintToString(row.text);
}

TEST(VendorIDTest, AcceptsEveryDigitOfEachScriptAndNothingBesideThem) {
    const struct {
        std::string before, zero, nine, after;
    } scripts[] = {
        {"/", "0", "9", ":"},
        {"\u065F", "\u0660", "\u0669", "\u066A"},
        {"\u0E4F", "\u0E50", "\u0E59", "\u0E5A"},
        {"\uFF0F", "\uFF10", "\uFF19", "\uFF1A"},
    };
    for (const auto& script : scripts) {
        EXPECT_FALSE(isNumericVendorID(script.before)) << script.zero;
        EXPECT_TRUE(isNumericVendorID(script.zero)) << script.zero;
        EXPECT_TRUE(isNumericVendorID(script.nine)) << script.zero;
        EXPECT_FALSE(isNumericVendorID(script.after)) << script.zero;
    }
}

}  // namespace
}  // namespace corvane
