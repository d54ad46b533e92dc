#include "app/version_components.h"

#include <gtest/gtest.h>

#include <limits>

namespace corvane {
namespace {

constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t smallest = std::numeric_limits<std::int64_t>::min();

TEST(VersionComponentsTest, ReadsTheNumbersBetweenThePoints) {
    const struct {
        const char* version;
        std::vector<std::int64_t> components;
    } rows[] = {
        {"1.2", {1, 2}},
        {"1", {1}},
        {"1.0b", {1, 0}},
        {"2..1", {2, 0, 1}},
        {"", {0}},
        {".", {0, 0}},
        {"1.", {1, 0}},
        {".1", {0, 1}},
        {"...", {0, 0, 0, 0}},
        {"01.002", {1, 2}},
        {"+1.-2", {1, -2}},
        {"-0", {0}},
        {"+-1.-+1.--1.++1", {0, 0, 0, 0}},
        {"+.-", {0, 0}},
        {"+/1.+:1", {0, 0}},
        {" 1. 2.3 ", {0, 0, 0}},
        {"1.2,3", {1, 0}},
        {"0x10.1e3", {0, 0}},
        {"9223372036854775807.9223372036854775808", {largest, 0}},
        {"-9223372036854775808.-9223372036854775809", {smallest, 0}},
        {"+9223372036854775807", {largest}},
        {"\uFF11.\u0661", {0, 0}},
        {"v1.2", {0, 2}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(versionComponents(row.version), row.components) << row.version;
}

TEST(VersionComponentsTest, AreOrderedAsVersionsAre) {
    const struct {
        const char* older;
        const char* newer;
    } rows[] = {{"1.1", "1.2"},  {"1.9", "1.10"},    {"1.0", "1.0.0"},  {"1.9.9", "2"},
                {"1", "1.0"},    {"1.2.3", "1.3"},   {"-1", "0"},       {"1.0.9", "1.1"},
                {"beta", "0.0"}, {"1.-1", "1.beta"}, {"1.b.1", "1.1.0"}};
    for (const auto& row : rows) {
        EXPECT_LT(versionComponents(row.older), versionComponents(row.newer)) << row.older;
        EXPECT_FALSE(versionComponents(row.newer) < versionComponents(row.older)) << row.older;
    }
    EXPECT_EQ(versionComponents("1.01"), versionComponents("1.1"));
}

}  // namespace
}  // namespace corvane
