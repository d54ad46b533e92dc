#include "demo_service/scenarios.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace corvane::demo {
namespace {

using namespace std::chrono_literals;

ScenarioSurroundings surroundings() {
    return {.redirectTarget = "localhost:1",
            .today = [] { return std::chrono::year_month_day(2015y / 1 / 4); }};
}

std::optional<Behaviour> decide(std::string_view scenario, const ReportRequest& request) {
    const auto rule = scenarioNamed(scenario, surroundings());
    EXPECT_TRUE(rule) << scenario;
    return rule ? (*rule)(request) : std::nullopt;
}

TEST(Scenarios, EveryListedNameHasARule) {
    std::set<std::string_view> names;
    for (const ScenarioName& scenario : scenarioNames()) {
        EXPECT_TRUE(scenarioNamed(scenario.name, surroundings())) << scenario.name;
        EXPECT_TRUE(names.insert(scenario.name).second) << scenario.name;
    }
    EXPECT_FALSE(scenarioNamed("", surroundings()));
    EXPECT_FALSE(scenarioNamed("unknown", surroundings()));
}

TEST(Scenarios, SignInIsRefusedAtTheFirstDate) {
    EXPECT_TRUE(decide("wrong-sign-in-first", {.index = 0}));
    EXPECT_FALSE(decide("wrong-sign-in-first", {.index = 1}));
}

TEST(Scenarios, SignInIsRefusedInTheMiddleOfAFullList) {
    const std::pair<ReportDateType, std::size_t> rows[] = {{ReportDateType::Daily, 183},
                                                           {ReportDateType::Weekly, 28},
                                                           {ReportDateType::Monthly, 7},
                                                           {ReportDateType::Yearly, 5}};
    for (const auto& [type, index] : rows) {
        EXPECT_TRUE(decide("wrong-sign-in-middle", {.dateType = type, .index = index})) << letterOf(type);
        EXPECT_FALSE(decide("wrong-sign-in-middle", {.dateType = type, .index = index - 1}))
            << letterOf(type);
    }
}

TEST(Scenarios, SignInIsRefusedAtTheLastDateOfAList) {
    struct Row {
        ReportDateType type;
        std::chrono::year_month_day date;
        bool isLast;
    };
    const Row rows[] = {
        {ReportDateType::Daily, 2015y / 1 / 4, true},   {ReportDateType::Daily, 2015y / 1 / 3, false},
        {ReportDateType::Weekly, 2015y / 1 / 4, true},  {ReportDateType::Weekly, 2014y / 12 / 28, false},
        {ReportDateType::Monthly, 2015y / 1 / 3, true}, {ReportDateType::Monthly, 2014y / 12 / 6, false},
        {ReportDateType::Yearly, 2015y / 1 / 4, true},  {ReportDateType::Yearly, 2014y / 1 / 4, false},
    };
    for (const Row& row : rows) {
        const auto decided = decide("wrong-sign-in-last", {.dateType = row.type, .date = row.date});
        EXPECT_EQ(decided.has_value(), row.isLast)
            << letterOf(row.type) << ' ' << static_cast<unsigned>(row.date.day());
    }
}

TEST(Scenarios, RedirectsLeadToTheTarget) {
    const auto plain = decide("redirect-307", {});
    ASSERT_TRUE(plain);
    EXPECT_EQ(plain->statusCode, 307);
    EXPECT_EQ(plain->location, "http://localhost:1/autoingestion.tft?");
    const auto secure = decide("redirect-307-https", {});
    ASSERT_TRUE(secure);
    EXPECT_EQ(secure->location, "https://localhost:1/autoingestion.tft?");
    EXPECT_EQ(decide("status-500", {})->location, "");
}

TEST(Scenarios, CanHoldForEveryNthRequestOnly) {
    const auto rule = onEvery(3, *scenarioNamed("no-report", surroundings()));
    for (std::size_t index = 0; index < 7; ++index) {
        EXPECT_EQ(rule({.index = index}).has_value(), index == 2 || index == 5) << index;
    }
}

}  // namespace
}  // namespace corvane::demo
