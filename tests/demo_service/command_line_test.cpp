#include "demo_service/command_line.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace corvane::demo {
namespace {

using namespace std::chrono_literals;
using Arguments = std::vector<std::string_view>;

TEST(CommandLine, AsksForNothingByDefault) {
    std::string problem;
    const auto line = parseCommandLine({}, problem);
    ASSERT_TRUE(line) << problem;
    EXPECT_EQ(line->port, 0);
    EXPECT_EQ(line->tls, TlsVariant::Trusted);
    EXPECT_EQ(line->every, 1U);
    EXPECT_TRUE(line->scenario.empty());
    EXPECT_TRUE(line->feedVersion.empty());
    EXPECT_FALSE(line->diesWithParent);
    EXPECT_FALSE(line->asksForHelp);
}

TEST(CommandLine, ReadsEveryOption) {
    const Arguments arguments{"--port",         "8443",      "--update-port",     "65535",
                              "--ca-file",      "/x/ca.pem", "--accounts",        "/x/a.tsv",
                              "--tls",          "expired",   "--host-name",       "reports.example",
                              "--latency",      "250",       "--report-size",     "500000",
                              "--scenario",     "stall",     "--every",           "7",
                              "--feed-version", "2.0",       "--feed-notes",      "Better.",
                              "--feed-link",    "https://x", "--die-with-parent", "--help"};
    std::string problem;
    const auto line = parseCommandLine(arguments, problem);
    ASSERT_TRUE(line) << problem;
    EXPECT_EQ(line->port, 8443);
    EXPECT_EQ(line->updatePort, 65535);
    EXPECT_EQ(line->caFile, "/x/ca.pem");
    EXPECT_EQ(line->accountsFile, "/x/a.tsv");
    EXPECT_EQ(line->tls, TlsVariant::Expired);
    EXPECT_EQ(line->hostName, "reports.example");
    EXPECT_EQ(line->latency, 250ms);
    EXPECT_EQ(line->reportSize, 500'000U);
    EXPECT_EQ(line->scenario, "stall");
    EXPECT_EQ(line->every, 7U);
    EXPECT_EQ(line->feedVersion, "2.0");
    EXPECT_EQ(line->feedNotes, "Better.");
    EXPECT_EQ(line->feedLink, "https://x");
    EXPECT_TRUE(line->diesWithParent);
    EXPECT_TRUE(line->asksForHelp);
}

TEST(CommandLine, RefusesWhatMakesNoSense) {
    const Arguments rows[] = {
        {"serve"},
        {"--unknown"},
        {"--port"},
        {"--port", "65536"},
        {"--port", "-1"},
        {"--port", "8x"},
        {"--port", ""},
        {"--latency", "-5"},
        {"--every", "0"},
        {"--ca-file", ""},
        {"--tls", "tls1.2"},
        {"--scenario", "unknown"},
        {"--host-name", ""},
        {"--host-name", "a,DNS:b"},
        {"--report-size", "0"},
    };
    for (const Arguments& row : rows) {
        std::string problem;
        EXPECT_FALSE(parseCommandLine(row, problem)) << row.front() << ' ' << row.back();
        EXPECT_NE(problem.find(row.front()), std::string::npos) << problem;
    }
}

TEST(CommandLine, HelpNamesOptionsAndScenarios) {
    const std::string text = helpText();
    for (const std::string_view word : {"--port", "--scenario", "--die-with-parent", "stall-in-body"}) {
        EXPECT_NE(text.find(word), std::string::npos) << word;
    }
}

TEST(Accounts, AreReadLineByLine) {
    const auto accounts = accountsFromText("# who may\njane@example.com\ta b\t80012345\n\nx\t\t1\n");
    ASSERT_TRUE(accounts);
    ASSERT_EQ(accounts->size(), 2U);
    EXPECT_EQ(accounts->front().userName, "jane@example.com");
    EXPECT_EQ(accounts->front().password, "a b");
    EXPECT_EQ(accounts->front().vendorId, "80012345");
    EXPECT_EQ(accounts->back().password, "");
    EXPECT_FALSE(accountsFromText("jane\tpassword\n"));
}

}  // namespace
}  // namespace corvane::demo
