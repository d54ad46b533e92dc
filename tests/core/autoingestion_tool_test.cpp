#include "core/autoingestion_tool.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "platform/memory/in_memory_log.h"
#include "platform/memory/manual_background_queue.h"
#include "platform/memory/manual_main_queue.h"
#include "platform/memory/scripted_http_client.h"

namespace corvane {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr const char* rejection =
    "Your AppleConnect account or password was entered incorrectly. Please try again.";

const Date firstDate = startOfLocalDay(2015y / 1 / 4);
const Date secondDate = startOfLocalDay(2015y / 1 / 5);
const Date thirdDate = startOfLocalDay(2015y / 1 / 6);

HttpAnswer answerWith(std::vector<HttpHeader> headers, std::string_view body, int statusCode = 200) {
    HttpAnswer answer;
    answer.response = HttpResponse{statusCode, "https://service/autoingestion.tft?", std::move(headers)};
    answer.body = toBytes(body);
    return answer;
}

HttpAnswer reportNamed(const std::string& name, std::string_view body = "report", int statusCode = 200) {
    return answerWith({{"Content-Disposition", "attachment; filename=" + name}}, body, statusCode);
}

HttpAnswer refusal(const std::string& message) {
    return answerWith({{"ERRORMSG", message}}, "");
}

HttpAnswer transportFailure(const std::string& description) {
    HttpAnswer answer;
    answer.errorDescription = description;
    return answer;
}

/// One line for each call of a handler, with what it was given.
std::string describe(const ReportResult& result) {
    std::string text = result.succeeded ? "true" : "false";
    text += ' ' + result.fileName.value_or("-");
    text += ' ' + (result.reportDate ? formatLocalDate(*result.reportDate, DateFormat::YearMonthDay) : "-");
    text += result.isLastReport ? " last" : " more";
    text += ' ' + (result.reportData ? "[" + std::string(asText(*result.reportData)) + "]" : "-");
    return text;
}

class AutoingestionToolTest : public testing::Test {
  protected:
    /// Answers in order; a request too many is a failure.
    void answerInOrder(std::vector<HttpAnswer> answers) {
        std::reverse(answers.begin(), answers.end());
        answers_ = std::move(answers);
    }

    AutoingestionTool client() const { return {connection_, "me@example.com", "a b", "80012345"}; }

    AutoingestionTool::ReportHandler reportHandler() {
        return [this](const ReportResult& result) { calls_.push_back(describe(result)); };
    }

    AutoingestionTool::LoginErrorHandler loginErrorHandler() {
        return [this](const std::string& message) { calls_.push_back("error " + message); };
    }

    void request(std::vector<Date> dates,
                 AutoingestionToolDateType dateType = AutoingestionToolDateType::Daily) {
        client().requestReports(std::move(dates), dateType, reportHandler(), loginErrorHandler());
    }

    /// Everything there is to do, delays included.
    void finish() {
        backgroundQueue_.runAll();
        mainQueue_.advance(2s);
    }

    /// What a list of one date comes to.
    std::vector<std::string> callsFor(HttpAnswer answer) {
        answerInOrder({std::move(answer)});
        calls_.clear();
        request({firstDate});
        finish();
        return calls_;
    }

    std::vector<std::string> calls_;
    std::vector<HttpAnswer> answers_;
    InMemoryLog log_;
    ManualMainQueue mainQueue_;
    ManualBackgroundQueue backgroundQueue_;
    ScriptedHttpClient http_{[this](const HttpRequest&) {
        if (answers_.empty()) {
            ADD_FAILURE() << "a request that nobody expects";
            return HttpAnswer{};
        }
        HttpAnswer answer = std::move(answers_.back());
        answers_.pop_back();
        return answer;
    }};
    ReportServiceConnection connection_{"service.example:8443", http_, mainQueue_, backgroundQueue_, log_};
};

TEST_F(AutoingestionToolTest, HasNoDefaultConstructor) {
    EXPECT_FALSE(std::is_default_constructible_v<AutoingestionTool>);
}

TEST_F(AutoingestionToolTest, KeepsItsCredentials) {
    AutoingestionTool tool = client();
    EXPECT_EQ(tool.usernameString(), "me@example.com");
    EXPECT_EQ(tool.passwordString(), "a b");
    EXPECT_EQ(tool.vendorID(), "80012345");
    tool.setUsernameString("");
    tool.setPasswordString("x");
    tool.setVendorID("");
    EXPECT_EQ(tool.usernameString(), "");
    EXPECT_EQ(tool.passwordString(), "x");
    EXPECT_EQ(tool.vendorID(), "");
    tool.setVendorID(std::nullopt);
    EXPECT_EQ(tool.vendorID(), std::nullopt);
}

TEST_F(AutoingestionToolTest, SendsOneFormForEachDate) {
    answerInOrder({reportNamed("a"), reportNamed("b")});
    request({firstDate, secondDate + 13h}, AutoingestionToolDateType::Monhtly);
    finish();
    ASSERT_THAT(http_.requests(), SizeIs(2));
    const std::string form =
        "USERNAME=me%40example.com&PASSWORD=a%2520b&VNDNUMBER=80012345&TYPEOFREPORT=Sales"
        "&DATETYPE=Monhtly&REPORTTYPE=Summary&REPORTDATE=";
    EXPECT_EQ(http_.requests()[0].body, form + "20150104");
    EXPECT_EQ(http_.requests()[1].body, form + "20150105");
    for (const HttpRequest& sent : http_.requests()) {
        EXPECT_EQ(sent.method, "POST");
        EXPECT_EQ(sent.url, "https://service.example:8443/autoingestion.tft?");
        EXPECT_THAT(sent.headers,
                    ElementsAre(HttpHeader{"Content-Type", "application/x-www-form-urlencoded"}));
        EXPECT_FALSE(sent.followsRedirects);
    }
}

TEST_F(AutoingestionToolTest, SendsEmptyCredentials) {
    answerInOrder({reportNamed("a")});
    AutoingestionTool(connection_, "", "", "")
        .requestReports({firstDate}, AutoingestionToolDateType::Yearly, reportHandler(), loginErrorHandler());
    finish();
    EXPECT_EQ(http_.requests().at(0).body,
              "USERNAME=&PASSWORD=&VNDNUMBER=&TYPEOFREPORT=Sales&DATETYPE=Yearly&REPORTTYPE=Summary"
              "&REPORTDATE=20150104");
}

TEST_F(AutoingestionToolTest, DeliversEachReportInDateOrder) {
    answerInOrder({reportNamed("S_D_1.txt.gz", "one"), reportNamed("S_D_2.txt.gz", "two"),
                   reportNamed("S_D_3.txt.gz", "three")});
    request({firstDate, secondDate, thirdDate});
    finish();
    EXPECT_THAT(calls_,
                ElementsAre("true S_D_1.txt.gz 20150104 more [one]", "true S_D_2.txt.gz 20150105 more [two]",
                            "true S_D_3.txt.gz 20150106 last [three]"));
    EXPECT_EQ(mainQueue_.pendingCount(), 0U);
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(AutoingestionToolTest, WorksOnTheBackgroundQueueOnly) {
    answerInOrder({reportNamed("a")});
    request({firstDate});
    EXPECT_THAT(http_.requests(), IsEmpty());
    EXPECT_EQ(mainQueue_.pendingCount(), 0U);
    EXPECT_EQ(backgroundQueue_.pendingCount(), 1U);
    backgroundQueue_.runAll();
    EXPECT_THAT(http_.requests(), SizeIs(1));
    EXPECT_THAT(calls_, IsEmpty());
}

TEST_F(AutoingestionToolTest, WaitsTwoSecondsFromWhenTheMainQueueHasTheResult) {
    answerInOrder({reportNamed("a")});
    request({firstDate});
    backgroundQueue_.runAll();
    mainQueue_.runDueTasks();
    mainQueue_.advance(1999999999ns);
    EXPECT_THAT(calls_, IsEmpty());
    mainQueue_.advance(1ns);
    EXPECT_THAT(calls_, SizeIs(1));
}

TEST_F(AutoingestionToolTest, CountsTheTimeInWhichTheMainQueueWasBusyExtra) {
    answerInOrder({reportNamed("a")});
    request({firstDate});
    // A task of the main queue runs while the worker posts, and goes on for longer than the delay.
    mainQueue_.async([&] {
        backgroundQueue_.runAll();
        mainQueue_.asyncAfter(2s, [&] { calls_.emplace_back("two seconds after the post"); });
    });
    mainQueue_.advance(2s);
    EXPECT_THAT(calls_, ElementsAre("two seconds after the post", "true a 20150104 last [report]"));
}

TEST_F(AutoingestionToolTest, KeepsTheDelayOfEachResultApart) {
    answers_ = {reportNamed("b"), reportNamed("a")};
    request({firstDate});
    request({secondDate});
    backgroundQueue_.runAll();
    mainQueue_.advance(1s);
    EXPECT_THAT(calls_, IsEmpty());
    mainQueue_.advance(1s);
    EXPECT_THAT(calls_, ElementsAre("true a 20150104 last [report]", "true b 20150105 last [report]"));
}

TEST_F(AutoingestionToolTest, AnswersAnEmptyListWithOneClosingCall) {
    request({});
    EXPECT_EQ(backgroundQueue_.pendingCount(), 0U);
    mainQueue_.advance(1999ms);
    EXPECT_THAT(calls_, IsEmpty());
    mainQueue_.advance(1ms);
    EXPECT_THAT(calls_, ElementsAre("true - - last -"));
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(AutoingestionToolTest, LogsAMissingVendorID) {
    AutoingestionTool tool = client();
    tool.setVendorID(std::nullopt);
    tool.requestReports({firstDate}, AutoingestionToolDateType::Daily, reportHandler(), loginErrorHandler());
    tool.requestReports({}, AutoingestionToolDateType::Daily, reportHandler(), loginErrorHandler());
    finish();
    EXPECT_THAT(calls_, IsEmpty());
    EXPECT_THAT(log_.lines(), ElementsAre("VENDOR ID MUSS GESETZT SEIN", "VENDOR ID MUSS GESETZT SEIN"));
}

TEST_F(AutoingestionToolTest, LogsATransportFailureAndGoesOn) {
    answerInOrder({transportFailure("Could not connect to the server."), reportNamed("b")});
    request({firstDate, secondDate});
    finish();
    EXPECT_THAT(calls_, ElementsAre("false - 20150104 more -", "true b 20150105 last [report]"));
    EXPECT_THAT(log_.lines(), ElementsAre("failed to get data:Could not connect to the server.", "no data"));
}

TEST_F(AutoingestionToolTest, EndsQuietlyWhenTheProgramEnds) {
    HttpAnswer cancelled = transportFailure("cancelled");
    cancelled.isCancelled = true;
    answerInOrder({reportNamed("S_D_1.txt.gz"), cancelled});
    request({firstDate, secondDate, thirdDate});
    finish();
    EXPECT_THAT(calls_, SizeIs(1));
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(AutoingestionToolTest, LogsTextsThatLookLikeFormatsAsTheyAre) {
    callsFor(transportFailure("100%@ %i %s %2$@"));
    EXPECT_THAT(log_.lines(), ElementsAre("failed to get data:100%@ %i %s %2$@", "no data"));
}

TEST_F(AutoingestionToolTest, TakesABodyCutOffForNoBody) {
    HttpAnswer answer = reportNamed("report.txt");
    answer.body.reset();
    answer.errorDescription = "The network connection was lost.";
    EXPECT_THAT(callsFor(std::move(answer)), ElementsAre("false - 20150104 last -"));
    EXPECT_THAT(log_.lines(), ElementsAre("failed to get data:The network connection was lost.", "no data"));
}

TEST_F(AutoingestionToolTest, IsSilentAboutABodyWithoutResponse) {
    HttpAnswer answer;
    answer.body = toBytes("from nowhere");
    EXPECT_THAT(callsFor(std::move(answer)), ElementsAre("false - 20150104 last -"));
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(AutoingestionToolTest, TellsAReportByItsNameAlone) {
    struct Row {
        const char* what;
        HttpAnswer answer;
        const char* call;
    };
    HttpAnswer otherPlace = answerWith({}, "page");
    otherPlace.response->url = "https://service/login.html";
    const Row rows[] = {
        {"report", reportNamed("S_D_8_20150104.txt.gz"), "true S_D_8_20150104.txt.gz 20150104 last [report]"},
        {"server error", reportNamed("r.txt", "x", 500), "true r.txt 20150104 last [x]"},
        {"empty body", reportNamed("r.txt", ""), "true r.txt 20150104 last []"},
        {"NUL in the body", reportNamed("r.txt", std::string_view("a\0b", 3)), nullptr},
        {"no header", answerWith({}, "page"), "false - 20150104 last -"},
        {"no header, other place", otherPlace, "true login.html 20150104 last [page]"},
        {"redirect", answerWith({{"Location", "https://elsewhere/r.txt"}}, "", 302),
         "false - 20150104 last -"},
        {"refusal's name", reportNamed("autoingestion.tft"), "false - 20150104 last -"},
        {"its beginning", reportNamed("autoingestion"), "false - 20150104 last -"},
        {"longer name", reportNamed("autoingestionreport.txt"), "false - 20150104 last -"},
        {"shorter name", reportNamed("autoingestio"), "true autoingestio 20150104 last [report]"},
        {"capital A", reportNamed("Autoingestion.tft"), "true Autoingestion.tft 20150104 last [report]"},
        {"not in front", reportNamed("my_autoingestion.tft"),
         "true my_autoingestion.tft 20150104 last [report]"},
        {"folders", reportNamed("../../autoingestion"), "true .._.._autoingestion 20150104 last [report]"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        const std::string expected =
            row.call != nullptr ? row.call : std::string("true r.txt 20150104 last [a\0b]", 30);
        EXPECT_THAT(callsFor(row.answer), ElementsAre(expected));
    }
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(AutoingestionToolTest, LooksForTheServicesMessageByItsExactName) {
    struct Row {
        const char* what;
        std::vector<HttpHeader> headers;
        bool isRejection;
    };
    const std::string text = rejection;
    const Row rows[] = {
        {"exact", {{"ERRORMSG", text}}, true},
        {"in a longer text", {{"ERRORMSG", "E42: " + text + " (8)"}}, true},
        {"with a name",
         {{"Content-Disposition", "attachment; filename=autoingestion.x"}, {"ERRORMSG", text}},
         true},
        {"second of two", {{"ERRORMSG", "first"}, {"ERRORMSG", text}}, true},
        {"lower-case name", {{"errormsg", text}}, false},
        {"mixed-case name", {{"ErrorMsg", text}}, false},
        {"longer name", {{"X-ERRORMSG", text}}, false},
        {"other case in the text",
         {{"ERRORMSG", "your AppleConnect account or password was entered incorrectly."}},
         false},
        {"no full stop",
         {{"ERRORMSG", "Your AppleConnect account or password was entered incorrectly"}},
         false},
        {"other text",
         {{"ERRORMSG", "There are no reports available to download for this selection."}},
         false},
        {"empty text", {{"ERRORMSG", ""}}, false},
        {"no text", {}, false},
        {"a report all the same",
         {{"Content-Disposition", "attachment; filename=r.txt"}, {"ERRORMSG", text}},
         false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        const std::vector<std::string> calls = callsFor(answerWith(row.headers, "body"));
        EXPECT_EQ(calls.size(), row.isRejection ? 3U : 1U);
        EXPECT_EQ(calls.front().starts_with("error "), row.isRejection);
    }
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(AutoingestionToolTest, StopsAtARejectedSignInOnTheFirstDate) {
    answerInOrder({refusal(rejection)});
    request({firstDate, secondDate, thirdDate});
    backgroundQueue_.runAll();
    EXPECT_THAT(calls_, ElementsAre(std::string("error ") + rejection));
    mainQueue_.advance(2s);
    EXPECT_THAT(calls_, ElementsAre(std::string("error ") + rejection, "false - 20150104 more -",
                                    "false - - last -"));
    EXPECT_THAT(http_.requests(), SizeIs(1));
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(AutoingestionToolTest, StopsAtARejectedSignInInTheMiddle) {
    answerInOrder({reportNamed("a"), refusal(rejection)});
    request({firstDate, secondDate, thirdDate});
    finish();
    EXPECT_THAT(calls_, ElementsAre(std::string("error ") + rejection, "true a 20150104 more [report]",
                                    "false - 20150105 more -", "false - - last -"));
    EXPECT_THAT(http_.requests(), SizeIs(2));
}

TEST_F(AutoingestionToolTest, ClosesTwiceAfterARejectedSignInOnTheLastDate) {
    answerInOrder({reportNamed("a"), refusal(rejection)});
    request({firstDate, secondDate});
    finish();
    EXPECT_THAT(calls_, ElementsAre(std::string("error ") + rejection, "true a 20150104 more [report]",
                                    "false - 20150105 last -", "false - - last -"));
}

TEST_F(AutoingestionToolTest, ReportsTheRejectionBeforeItsResultIsPosted) {
    answerInOrder({refusal(rejection)});
    std::size_t postedBefore = 99;
    client().requestReports({firstDate}, AutoingestionToolDateType::Daily, reportHandler(),
                            [&](const std::string&) { postedBefore = mainQueue_.pendingCount(); });
    finish();
    EXPECT_EQ(postedBefore, 0U);
}

TEST_F(AutoingestionToolTest, StopsOnlyTheJobThatWasRejected) {
    answerInOrder({refusal(rejection), reportNamed("b")});
    const AutoingestionTool tool = client();
    tool.requestReports({firstDate}, AutoingestionToolDateType::Daily, reportHandler(), loginErrorHandler());
    tool.requestReports({secondDate}, AutoingestionToolDateType::Daily, reportHandler(), loginErrorHandler());
    finish();
    EXPECT_THAT(calls_, testing::Contains("true b 20150105 last [report]"));
}

TEST_F(AutoingestionToolTest, SendsNothingToAHostThatIsNone) {
    const ReportServiceConnection nowhere{"no host", http_, mainQueue_, backgroundQueue_, log_};
    AutoingestionTool(nowhere, "u", "p", "1")
        .requestReports({firstDate, secondDate}, AutoingestionToolDateType::Daily, reportHandler(),
                        loginErrorHandler());
    finish();
    EXPECT_THAT(calls_, ElementsAre("false - 20150104 more -", "false - 20150105 last -"));
    EXPECT_THAT(http_.requests(), IsEmpty());
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(AutoingestionToolTest, NeverLogsThePassword) {
    answerInOrder({transportFailure("The request timed out."), refusal("other"), refusal(rejection)});
    AutoingestionTool(connection_, "u", "hunter2", "1")
        .requestReports({firstDate, secondDate, thirdDate}, AutoingestionToolDateType::Daily, reportHandler(),
                        loginErrorHandler());
    finish();
    for (const std::string& line : log_.lines())
        EXPECT_EQ(line.find("hunter2"), std::string::npos) << line;
}

TEST_F(AutoingestionToolTest, HandsTheBodyOnWithoutCopyingIt) {
    const std::uint8_t* sent = nullptr;
    ScriptedHttpClient http([&](const HttpRequest&) {
        HttpAnswer answer = reportNamed("r.txt", "a body");
        sent = answer.body->data();
        return answer;
    });
    const ReportServiceConnection connection{"service", http, mainQueue_, backgroundQueue_, log_};
    const std::uint8_t* received = nullptr;
    AutoingestionTool(connection, "u", "p", "1")
        .requestReports(
            {firstDate}, AutoingestionToolDateType::Daily,
            [&](const ReportResult& result) { received = result.reportData->data(); }, loginErrorHandler());
    finish();
    EXPECT_NE(received, nullptr);
    EXPECT_EQ(received, sent);
}

TEST_F(AutoingestionToolTest, KeepsClientAndHandlersForTheJob) {
    answerInOrder({refusal("none"), refusal(rejection)});
    const auto token = std::make_shared<int>(0);
    auto tool = std::make_unique<AutoingestionTool>(client());
    tool->requestReports(
        {firstDate, secondDate}, AutoingestionToolDateType::Daily,
        [this, token](const ReportResult& result) { calls_.push_back(describe(result)); },
        [token](const std::string&) {});
    tool->setPasswordString("changed later");
    tool.reset();
    EXPECT_GT(token.use_count(), 1);
    backgroundQueue_.runAll();
    EXPECT_NE(http_.requests().at(0).body.find("PASSWORD=a%2520b&"), std::string::npos);
    EXPECT_GT(token.use_count(), 1);
    mainQueue_.advance(2s);
    EXPECT_THAT(calls_, SizeIs(3));
    EXPECT_EQ(token.use_count(), 1);
}

class SingleReportTest : public AutoingestionToolTest {
  protected:
    void requestOne(const AutoingestionTool& tool) {
        tool.requestReport(
            firstDate, AutoingestionToolDateType::Weekly,
            [this](bool succeeded, const std::optional<std::string>& fileName, std::optional<Date> reportDate,
                   const std::optional<Bytes>& reportData) {
                ReportResult result{succeeded, fileName, reportDate, false, reportData};
                calls_.push_back(describe(result));
            },
            loginErrorHandler());
    }
};

TEST_F(SingleReportTest, HandsTheReportOn) {
    answerInOrder({reportNamed("a")});
    requestOne(client());
    finish();
    EXPECT_THAT(calls_, ElementsAre("true a 20150104 more [report]"));
    EXPECT_NE(http_.requests().at(0).body.find("&DATETYPE=Weekly&"), std::string::npos);
}

TEST_F(SingleReportTest, SaysTrueWhateverCame) {
    answerInOrder({refusal("other"), transportFailure("The request timed out."), refusal(rejection)});
    for (int i = 0; i < 3; ++i)
        requestOne(client());
    finish();
    EXPECT_THAT(calls_, ElementsAre(std::string("error ") + rejection, "true - 20150104 more -",
                                    "true - 20150104 more -", "true - 20150104 more -", "true - - more -"));
}

TEST_F(SingleReportTest, IsSilentWithoutAVendorID) {
    AutoingestionTool tool = client();
    tool.setVendorID(std::nullopt);
    requestOne(tool);
    finish();
    EXPECT_THAT(calls_, IsEmpty());
    EXPECT_THAT(log_.lines(), IsEmpty());
    EXPECT_EQ(backgroundQueue_.pendingCount(), 0U);
}

}  // namespace
}  // namespace corvane
