#include "demo_service/made_up_report_source.h"

#include <gtest/gtest.h>

#include <charconv>
#include <string>
#include <vector>

namespace corvane::demo {
namespace {

using namespace std::chrono_literals;

constexpr std::string_view kHeaderRow =
    "Provider\tProvider Country\tSKU\tDeveloper\tTitle\tVersion\tProduct Type Identifier\tUnits\t"
    "Developer Proceeds\tBegin Date\tEnd Date\tCustomer Currency\tCountry Code\tCurrency of Proceeds\t"
    "Apple Identifier\tCustomer Price\tPromo Code\tParent Identifier\tSubscription\tPeriod\tCategory";
constexpr std::size_t kColumnCount = 21;

std::vector<std::string> split(const std::string& text, char separator) {
    std::vector<std::string> pieces(1);
    for (const char each : text) {
        if (each == separator) {
            pieces.emplace_back();
        } else {
            pieces.back().push_back(each);
        }
    }
    return pieces;
}

std::string reportOf(std::string_view vendor, ReportDateType type, std::chrono::year_month_day date) {
    return MadeUpReportSource().report(vendor, type, date).value_or("");
}

TEST(MadeUpReportSource, RepeatsTheSameReport) {
    const std::string report = reportOf("80012345", ReportDateType::Daily, 2015y / 1 / 4);
    EXPECT_EQ(report, reportOf("80012345", ReportDateType::Daily, 2015y / 1 / 4));
    EXPECT_NE(report, reportOf("80012346", ReportDateType::Daily, 2015y / 1 / 4));
    EXPECT_NE(report, reportOf("80012345", ReportDateType::Daily, 2015y / 1 / 5));
    EXPECT_NE(report, reportOf("80012345", ReportDateType::Weekly, 2015y / 1 / 4));
}

TEST(MadeUpReportSource, GivesOneReportForAllDaysOfAMonthOrYear) {
    EXPECT_EQ(reportOf("1", ReportDateType::Monthly, 2015y / 1 / 1),
              reportOf("1", ReportDateType::Monthly, 2015y / 1 / 29));
    EXPECT_NE(reportOf("1", ReportDateType::Monthly, 2015y / 1 / 29),
              reportOf("1", ReportDateType::Monthly, 2015y / 2 / 26));
    EXPECT_EQ(reportOf("1", ReportDateType::Yearly, 2015y / 1 / 1),
              reportOf("1", ReportDateType::Yearly, 2015y / 12 / 31));
}

TEST(MadeUpReportSource, HasTheColumnsOfASalesSummaryReport) {
    const auto lines = split(reportOf("80012345", ReportDateType::Daily, 2015y / 1 / 4), '\n');
    ASSERT_GT(lines.size(), 3U);
    EXPECT_EQ(lines.front(), kHeaderRow);
    EXPECT_EQ(lines.back(), "");
    for (std::size_t number = 1; number + 1 < lines.size(); ++number) {
        const auto cells = split(lines[number], '\t');
        ASSERT_EQ(cells.size(), kColumnCount) << lines[number];
        EXPECT_EQ(cells[0], "APPLE");
        int units = 0;
        std::from_chars(cells[7].data(), cells[7].data() + cells[7].size(), units);
        EXPECT_GT(units, 0) << lines[number];
        EXPECT_LE(std::stod(cells[8]), std::stod(cells[15]))
            << "proceeds within the price: " << lines[number];
    }
}

TEST(MadeUpReportSource, CoversThePeriodOfTheType) {
    struct Row {
        ReportDateType type;
        std::chrono::year_month_day date;
        std::string begin;
        std::string end;
    };
    const Row rows[] = {
        {ReportDateType::Daily, 2015y / 1 / 4, "01/04/2015", "01/04/2015"},
        {ReportDateType::Weekly, 2015y / 1 / 4, "12/29/2014", "01/04/2015"},
        {ReportDateType::Monthly, 2016y / 2 / 5, "02/01/2016", "02/29/2016"},
        {ReportDateType::Monthly, 2015y / 12 / 31, "12/01/2015", "12/31/2015"},
        {ReportDateType::Yearly, 2015y / 7 / 1, "01/01/2015", "12/31/2015"},
    };
    for (const Row& row : rows) {
        const auto lines = split(reportOf("80012345", row.type, row.date), '\n');
        ASSERT_GT(lines.size(), 1U) << row.begin;
        const auto cells = split(lines[1], '\t');
        ASSERT_EQ(cells.size(), kColumnCount) << lines[1];
        EXPECT_EQ(cells[9], row.begin);
        EXPECT_EQ(cells[10], row.end);
    }
}

TEST(MadeUpReportSource, IsAsLongAsAsked) {
    for (const std::size_t size : {std::size_t{1}, std::size_t{5'000}, std::size_t{500'000}}) {
        MadeUpReportSource source(size);
        const auto report = source.report("80012345", ReportDateType::Daily, 2015y / 1 / 4);
        ASSERT_TRUE(report);
        EXPECT_GE(report->size(), size);
        EXPECT_LT(report->size(), size + 1000);
        EXPECT_GT(split(*report, '\n').size(), 2U) << "at least one row under the header";
    }
}

}  // namespace
}  // namespace corvane::demo
