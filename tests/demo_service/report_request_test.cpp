#include "demo_service/report_request.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace corvane::demo {
namespace {

using namespace std::chrono_literals;

std::string formWith(std::string_view vendor, std::string_view type, std::string_view date) {
    return "USERNAME=jane%40example.com&PASSWORD=a%2520b&VNDNUMBER=" + std::string(vendor) +
           "&TYPEOFREPORT=Sales&DATETYPE=" + std::string(type) +
           "&REPORTTYPE=Summary&REPORTDATE=" + std::string(date);
}

TEST(ReportRequest, ReadsEveryFieldOfTheForm) {
    const auto request = reportRequestFromForm(formWith("80012345", "Weekly", "20150104"));
    ASSERT_TRUE(request);
    EXPECT_EQ(request->userName, "jane@example.com");
    EXPECT_EQ(request->password, "a b");
    EXPECT_EQ(request->vendorId, "80012345");
    EXPECT_EQ(request->dateType, ReportDateType::Weekly);
    EXPECT_EQ(request->date, 2015y / 1 / 4);
}

TEST(ReportRequest, NamesTheReportAfterItsPeriod) {
    struct Row {
        std::string_view type;
        std::string_view name;
    };
    const Row rows[] = {
        {"Daily", "S_D_80012345_20150104.txt.gz"}, {"Weekly", "S_W_80012345_20150104.txt.gz"},
        {"Monhtly", "S_M_80012345_201501.txt.gz"}, {"Monthly", "S_M_80012345_201501.txt.gz"},
        {"Yearly", "S_Y_80012345_2015.txt.gz"},
    };
    for (const Row& row : rows) {
        const auto request = reportRequestFromForm(formWith("80012345", row.type, "20150104"));
        ASSERT_TRUE(request) << row.type;
        EXPECT_EQ(reportFileName(*request), row.name);
    }
}

TEST(ReportRequest, IsAbsentWhenAFieldIsMissingOrUnreadable) {
    const std::string forms[] = {
        "",
        "VNDNUMBER=80012345",
        formWith("", "Daily", "20150104"),
        formWith("80012345", "daily", "20150104"),
        formWith("80012345", "", "20150104"),
        formWith("80012345", "Daily", ""),
        formWith("80012345", "Daily", "201501"),
        formWith("80012345", "Daily", "20150229"),
        formWith("80012345", "Daily", "20151301"),
        formWith("80012345", "Daily", "2015010a"),
        formWith("80012345", "Daily", "-2015010"),
    };
    for (const std::string& form : forms) {
        EXPECT_FALSE(reportRequestFromForm(form)) << form;
    }
}

}  // namespace
}  // namespace corvane::demo
