// Imports as a host application, a script and a user see them, against the real program.

#include <gmock/gmock.h>

#include <algorithm>
#include <csignal>
#include <map>

#include "demo_service/made_up_report_source.h"
#include "end_to_end/end_to_end_environment.h"
#include "end_to_end/report_days.h"

namespace corvane::test {
namespace {

using demo::ReportDateType;
using std::chrono::sys_days;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::UnorderedElementsAre;

constexpr const char* password = "Geheim-Passw0rd";
constexpr ReportDateType allTypes[] = {ReportDateType::Daily, ReportDateType::Weekly, ReportDateType::Monthly,
                                       ReportDateType::Yearly};

const AccountTexts ordinaryAccount{"jane@example.com", password, "80012345"};

using DaysOfTypes = std::map<ReportDateType, std::vector<sys_days>>;

DaysOfTypes daysAsked(const demo::RequestLog& log) {
    DaysOfTypes days;
    for (const demo::ReceivedRequest& request : log.requests()) {
        if (request.reportRequest)
            days[request.reportRequest->dateType].emplace_back(request.reportRequest->date);
    }
    return days;
}

DaysOfTypes firstImport(sys_days today) {
    DaysOfTypes days;
    for (const ReportDateType type : allTypes)
        days[type] = firstImportDays(type, today);
    return days;
}

std::string fileNameOf(ReportDateType type, sys_days day, const std::string& vendorID) {
    return "S_" + std::string(demo::letterOf(type)) + "_" + vendorID + "_" + keyOf(type, day) + ".txt";
}

class ImportTest : public EndToEndTest {
  protected:
    /// Asks for the one report that is missing in the cache.
    void writeAccountMissing(const std::vector<sys_days>& days) {
        writeAccounts({ordinaryAccount}, fullCacheWithout(days), fullCache());
    }

    void expectFirstImport(const DaysOfTypes& asked, const std::vector<std::string>& keys) {
        std::set<std::string> names;
        std::set<std::string> expectedKeys;
        demo::MadeUpReportSource source;
        for (const auto& [type, days] : asked) {
            for (const sys_days day : days) {
                const std::string name = fileNameOf(type, day, ordinaryAccount.vendorID);
                names.insert(name);
                expectedKeys.insert(keyOf(type, day));
                EXPECT_EQ(readFile(reportFolder() / name),
                          source.report(ordinaryAccount.vendorID, type, std::chrono::year_month_day(day)))
                    << name;
            }
        }
        EXPECT_EQ(reports(), names);
        EXPECT_EQ(std::set<std::string>(keys.begin(), keys.end()), expectedKeys);
        EXPECT_EQ(keys.size(), expectedKeys.size()) << "a key was recorded twice";
    }
};

TEST_F(ImportTest, FetchesEverythingOnceAndLaterOnlyWhatIsMissing) {
    startService();
    writeAccounts({ordinaryAccount}, {}, {});
    ChildProcessOptions monitorOptions;
    monitorOptions.command = {"dbus-monitor", "--address", bus_->address()};
    monitorOptions.outputFile = home_.path() / "bus-traffic";
    ChildProcess monitor(monitorOptions);
    const auto traffic = [this] { return readFile(home_.path() / "bus-traffic"); };
    ASSERT_TRUE(waitUntil([&] { return traffic().find("NameLost") != std::string::npos; }, patience));

    const sys_days before = todayInUtc();
    startProgram();
    ChildProcessOptions command;
    command.command = {CORVANE_IMPORT, "--timeout", "60"};
    command.environment = environment_;
    command.outputFile = home_.path() / "command-out";
    ChildProcess import(command);
    ASSERT_TRUE(service_->requests().waitForCount(1, patience)) << log();
    const std::string process = "/proc/" + std::to_string(program_->id());
    EXPECT_THAT(readFile(process + "/environ"), HasSubstr("XDG_CONFIG_HOME"));
    EXPECT_THAT(readFile(process + "/environ"), Not(HasSubstr(password)));
    EXPECT_THAT(readFile(process + "/cmdline"), Not(HasSubstr(password)));

    ASSERT_EQ(import.waitForExit(std::chrono::minutes(1)), 0) << log();
    EXPECT_EQ(program_->waitForExit(patience), 0) << log();
    EXPECT_TRUE(host_->waitForFinishes(1, patience));
    EXPECT_THAT(traffic(), HasSubstr("member=kNotificationCorvaneReloadData"));
    EXPECT_THAT(traffic(), Not(HasSubstr(password)));
    EXPECT_THAT(log(), HasSubstr("updateDailyReports Lite:0"));
    EXPECT_THAT(log(), Not(HasSubstr(password)));

    const DaysOfTypes asked = daysAsked(service_->requests());
    EXPECT_THAT(asked, testing::AnyOf(firstImport(before), firstImport(todayInUtc())));
    EXPECT_EQ(service_->requests().count(), 366U + 56U + 14U + 11U);
    EXPECT_LE(service_->acceptedConnections(), 8U);
    const std::vector<std::string> keys = cache();
    expectFirstImport(asked, keys);
    EXPECT_THAT(cache("settingsKeyReportsDownloadedLiteCache"), IsEmpty());
    EXPECT_THAT(commandOutput(),
                HasSubstr("Import finished: " + std::to_string(reports().size()) + " new reports.\n"));

    const std::vector<sys_days> missing = recentWorkdays(1);
    std::vector<std::string> laterCache = fullCacheWithout(missing);
    writeAccounts({ordinaryAccount}, laterCache, {});
    service_->requests().clear();
    startProgram();
    host_->requestImport(R"({"isLite": false})");
    ASSERT_TRUE(host_->waitForFinishes(2, patience)) << log();
    EXPECT_EQ(program_->waitForExit(patience), 0) << log();
    EXPECT_THAT(daysAsked(service_->requests()), ElementsAre(testing::Pair(ReportDateType::Daily, missing)));
    laterCache.push_back(keyOf(ReportDateType::Daily, missing.front()));
    EXPECT_EQ(cache(), laterCache);
}

TEST_F(ImportTest, SendsEveryTextInTheServicesEscapes) {
    startService();
    const std::vector<sys_days> missing = recentWorkdays(1);
    writeAccounts({{"jane+doe@example.com", "p%q&r=s#t[u\"v w", " 80 01"},
                   {"J\u00F6rg 'J'@x", "\u30D1\u30B9\U0001F600~_", "#7%"},
                   {"a\\b|c^d`{e}<f>", "!$()*+,/:;?@]'", "%20%1%@%s"}},
                  fullCache(), fullCacheWithout(missing));
    startProgram();
    host_->requestImport(R"({"isLite": true})");
    ASSERT_TRUE(host_->waitForFinishes(1, patience)) << log();

    const std::string rest = "&TYPEOFREPORT=Sales&DATETYPE=Daily&REPORTTYPE=Summary&REPORTDATE=" +
                             keyOf(ReportDateType::Daily, missing.front());
    std::vector<std::string> bodies;
    for (const demo::ReceivedRequest& request : service_->requests().requests()) {
        bodies.emplace_back(asText(request.body));
        EXPECT_EQ(request.requestLine, "POST /autoingestion.tft? HTTP/1.1");
        EXPECT_THAT(request.headerLines, Contains("Content-Type: application/x-www-form-urlencoded"));
        EXPECT_THAT(request.headerLines, Contains("Host: localhost:" + std::to_string(TEST_SERVICE_PORT)));
        EXPECT_THAT(request.headerLines,
                    Not(Contains(testing::ContainsRegex("^(Accept-Encoding|Expect|Cookie|Authorization):"))));
    }
    EXPECT_THAT(bodies,
                UnorderedElementsAre(
                    "USERNAME=jane%2Bdoe%40example.com&PASSWORD=p%2525q&r=s%2523t%255Bu%2522v%2520w"
                    "&VNDNUMBER=%252080%252001" +
                        rest,
                    "USERNAME=J%25C3%25B6rg%2520%27J%27%40x"
                    "&PASSWORD=%25E3%2583%2591%25E3%2582%25B9%25F0%259F%2598%2580~_&VNDNUMBER=%25237%2525" +
                        rest,
                    "USERNAME=a%255Cb%257Cc%255Ed%2560%257Be%257D%253Cf%253E"
                    "&PASSWORD=%21%24%28%29%2A%2B%2C%2F%3A%3B%3F%40%255D%27"
                    "&VNDNUMBER=%252520%25251%2525%40%2525s" +
                        rest));
    EXPECT_THAT(cache("settingsKeyReportsDownloadedLiteCache"),
                Contains(keyOf(ReportDateType::Daily, missing.front())));
    EXPECT_THAT(cache(), fullCache());
}

TEST_F(ImportTest, GoesOnAfterFailuresThatLeaveNothingBehind) {
    startService();
    const std::vector<sys_days> days = recentWorkdays(9);
    writeAccountMissing(days);
    const std::string elsewhere = "https://" + service_->redirectTargetHost() + "/signin";
    const std::vector<demo::Behaviour> behaviours{
        {.delivery = {.kind = demo::DeliveryKind::ResetBeforeAnswer}},
        {.delivery = {.kind = demo::DeliveryKind::CutBody}},
        {.content = demo::Content::HtmlPage, .statusCode = 500},
        {.content = demo::Content::HtmlPage},
        {.content = demo::Content::HtmlPage, .statusCode = 302, .location = elsewhere},
        {.delivery = {.kind = demo::DeliveryKind::ResetInBody}},
        {.fileName = "S_/../../../../outside.txt.gz"},
        {.fileName = "\"../../outside.txt.gz\""},
        {},
    };
    service_->setBehaviour([&](const demo::ReportRequest& request) -> std::optional<demo::Behaviour> {
        const auto day = std::ranges::find(days, sys_days(request.date));
        if (day == days.end())
            return std::nullopt;
        return behaviours[static_cast<std::size_t>(day - days.begin())];
    });
    startProgram();
    host_->requestImport(std::nullopt);
    ASSERT_TRUE(host_->waitForFinishes(1, patience)) << log();
    EXPECT_EQ(program_->waitForExit(patience), 0) << "the last answer was a success";

    const std::string last = fileNameOf(ReportDateType::Daily, days.back(), ordinaryAccount.vendorID);
    EXPECT_THAT(reports(), UnorderedElementsAre("S__.txt", ".txt", last)) << log();
    EXPECT_EQ(filesBelow(dataHome()).size(), 3U) << "a name with folders left the report folder";
    std::vector<std::string> keys = fullCacheWithout(days);
    for (std::size_t i = 6; i < days.size(); ++i)
        keys.push_back(keyOf(ReportDateType::Daily, days[i]));
    EXPECT_EQ(cache(), keys);
    EXPECT_EQ(service_->redirectTargetConnections(), 0U) << "a redirect was followed";
    EXPECT_THAT(log(), HasSubstr("failed to get data:"));
    EXPECT_THAT(log(), HasSubstr("download not sucessfull"));
}

TEST_F(ImportTest, SendsNothingToAServiceThatItCannotTrust) {
    startService(demo::TlsVariant::SelfSigned);
    const std::vector<sys_days> missing = recentWorkdays(1);
    writeAccountMissing(missing);
    startProgram();
    host_->requestImport("no JSON {");
    ASSERT_TRUE(host_->waitForFinishes(1, patience)) << log();

    EXPECT_THAT(log(), HasSubstr("updateDailyReports Lite:0"));
    EXPECT_GE(service_->acceptedConnections(), 1U);
    EXPECT_EQ(service_->receivedBytes(), 0U);
    EXPECT_THAT(reports(), IsEmpty());
    EXPECT_EQ(cache(), fullCacheWithout(missing));
    EXPECT_TRUE(host_->activate()) << "a failed import leaves the program open";

    service_.reset();
    startService();
    host_->requestImport("[1, 2]");
    ASSERT_TRUE(host_->waitForFinishes(2, patience)) << log();
    EXPECT_EQ(service_->requests().count(), 0U) << "an authority of before must not be trusted";
}

TEST_F(ImportTest, EndsWithinASecondWhileARequestIsOpen) {
    startService();
    writeAccountMissing(recentWorkdays(3));
    service_->setBehaviour([](const demo::ReportRequest&) {
        return demo::Behaviour{.delivery = {.kind = demo::DeliveryKind::StallBeforeHeader}};
    });
    startProgram();
    EXPECT_EQ(run({CORVANE_IMPORT, "--timeout", "3"}), 3) << log();
    EXPECT_EQ(service_->requests().count(), 1U);
    program_->sendSignal(SIGTERM);
    EXPECT_TRUE(program_->waitForExit(quitLimit).has_value()) << "still running";
    EXPECT_THAT(cache(), Not(Contains(keyOf(ReportDateType::Daily, recentWorkdays(1).front()))));
}

TEST_F(ImportTest, IsStartedByTheBusForAScript) {
    startService();
    writeAccountMissing(recentWorkdays(1));
    bus_->addService("com.quessartolvinger.Corvane", TEST_PROGRAM);
    EXPECT_EQ(run({CORVANE_IMPORT}), 0);
    EXPECT_THAT(commandOutput(), HasSubstr("Import finished: 1 new report.\n"));
    EXPECT_TRUE(host_->waitForProgram(false, patience)) << "still running after a successful import";
}

}  // namespace
}  // namespace corvane::test
