#include "platform/text_format.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <limits>

namespace corvane {
namespace {

TEST(TextFormatTest, FillsDirectivesInOrder) {
    EXPECT_EQ(formatText("Downloaded %i of %i reports", {std::int64_t{3}, std::int64_t{8}}),
              "Downloaded 3 of 8 reports");
    EXPECT_EQ(formatText("copy from:%@ to:%@", {"/a", "/b"}), "copy from:/a to:/b");
    EXPECT_EQ(formatText("%.2f%% completed", {37.5}), "37.50% completed");
    EXPECT_EQ(formatText("%f", {0.5}), "0.500000");
    EXPECT_EQ(formatText("", {}), "");
    EXPECT_EQ(formatText("%@", {""}), "");
}

TEST(TextFormatTest, TakesNumberedArguments) {
    EXPECT_EQ(formatText("%2$i von %1$i", {std::int64_t{3}, std::int64_t{8}}), "8 von 3");
    EXPECT_EQ(formatText("%2$@ %2$@ %1$.1f", {1.25, "x"}), "x x 1.2");
}

TEST(TextFormatTest, ReadsNoDirectivesInWhatIsFilledIn) {
    EXPECT_EQ(formatText("%@ %@", {"%@ %i %1$@ 100%", "%%"}), "%@ %i %1$@ 100% %%");
}

TEST(TextFormatTest, LeavesWhatItCannotFill) {
    const struct {
        const char* format;
        const char* expected;
    } cases[] = {
        {"%i", "%i"},         {"%.2f", "%.2f"},   {"%@ %@", "text %@"}, {"%2$@", "%2$@"}, {"%0$@", "%0$@"},
        {"%s", "%s"},         {"%", "%"},         {"100%", "100%"},     {"%.f", "%.f"},   {"%.2@", "%.2@"},
        {"%123$@", "%123$@"}, {"%1$", "%1$"},     {"%12", "%12"},       {"%1x", "%1x"},   {"%1@", "%1@"},
        {"%.", "%."},         {"%s%@", "%stext"},
    };
    for (const auto& [format, expected] : cases)
        EXPECT_EQ(formatText(format, {"text"}), expected) << format;
}

TEST(TextFormatTest, WritesNumbersThatAreNoneWithoutASignOfTheirOwn) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const double notANumber = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(formatText("%.2f", {notANumber}), "nan");
    EXPECT_EQ(formatText("%.2f", {std::copysign(notANumber, -1.0)}), "nan");
    EXPECT_EQ(formatText("%.2f", {infinity}), "inf");
    EXPECT_EQ(formatText("%.2f", {-infinity}), "-inf");
}

TEST(TextFormatTest, WritesTheExtremesOfIntegers) {
    EXPECT_EQ(formatText("%i", {std::numeric_limits<std::int64_t>::min()}), "-9223372036854775808");
}

}  // namespace
}  // namespace corvane
