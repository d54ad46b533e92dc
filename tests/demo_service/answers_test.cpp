// What the service answers, seen by a client over TLS.
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "demo_service/made_up_report_source.h"
#include "demo_service/service_client.h"

namespace corvane::demo {
namespace {

using namespace std::chrono_literals;

constexpr std::string_view kDisposition = "Content-Disposition:";
constexpr std::string_view kName = "Content-Disposition: attachment; filename=S_D_80012345_20150104.txt.gz";

BehaviourRule always(Behaviour behaviour) {
    return [behaviour = std::move(behaviour)](const ReportRequest&) { return behaviour; };
}

std::string madeUpReport() {
    return MadeUpReportSource().report("80012345", ReportDateType::Daily, 2015y / 1 / 4).value_or("");
}

Fetched fetchWith(Behaviour behaviour) {
    const auto service = startService({.behaviour = always(std::move(behaviour))});
    return fetchReport(*service);
}

TEST(Answers, AReportIsAPackedAttachment) {
    const auto service = startService();
    const Fetched fetched = fetchReport(*service);
    EXPECT_EQ(fetched.result, CURLE_OK);
    EXPECT_EQ(fetched.status, 200);
    EXPECT_TRUE(fetched.hasHeaderLine("Content-Type: application/a-gzip"));
    EXPECT_TRUE(fetched.hasHeaderLine(kName));
    EXPECT_FALSE(fetched.hasHeader("ERRORMSG"));
    EXPECT_EQ(gunzipped(fetched.body), madeUpReport());
}

TEST(Answers, EveryDateTypeIsServedUnderItsOwnName) {
    const auto service = startService();
    CurlClient client(service->caCertificate());
    const std::pair<std::string, std::string> rows[] = {{"Daily", "S_D_80012345_20150104.txt.gz"},
                                                        {"Weekly", "S_W_80012345_20150104.txt.gz"},
                                                        {"Monhtly", "S_M_80012345_201501.txt.gz"},
                                                        {"Yearly", "S_Y_80012345_2015.txt.gz"}};
    for (const auto& [type, name] : rows) {
        const Fetched fetched = client.post(reportUrl(*service), formFor("80012345", type, "20150104"));
        EXPECT_TRUE(fetched.hasHeaderLine("Content-Disposition: attachment; filename=" + name)) << type;
        EXPECT_TRUE(gunzipped(fetched.body)) << type;
    }
    EXPECT_EQ(service->acceptedConnections(), 1U) << "the connection is kept";
}

TEST(Answers, AWrongSignInIsRefusedByHeader) {
    const std::vector<DemoAccount> accounts{{"jane@example.com", "a b", "80012345"}};
    const auto service = startService({.accounts = accounts});
    CurlClient client(service->caCertificate());
    const std::string right = formFor("80012345", "Daily", "20150104");
    EXPECT_TRUE(client.post(reportUrl(*service), right).hasHeader(kDisposition));

    const std::string wrongForms[] = {
        "USERNAME=jane%40example.com&PASSWORD=ab&VNDNUMBER=80012345&DATETYPE=Daily&REPORTDATE=20150104",
        "USERNAME=joe%40example.com&PASSWORD=a%2520b&VNDNUMBER=80012345&DATETYPE=Daily&REPORTDATE=20150104",
        formFor("80012346", "Daily", "20150104"),
    };
    for (const std::string& form : wrongForms) {
        const Fetched fetched = client.post(reportUrl(*service), form);
        EXPECT_EQ(fetched.status, 200) << form;
        EXPECT_FALSE(fetched.hasHeader(kDisposition)) << form;
        EXPECT_TRUE(
            fetched.hasHeaderLine("ERRORMSG: Your AppleConnect account or password was entered incorrectly."))
            << form;
    }
}

TEST(Answers, ASourceWithoutTheReportIsNoReport) {
    class EmptySource final : public ReportSource {
      public:
        std::optional<std::string> report(std::string_view, ReportDateType,
                                          std::chrono::year_month_day) override {
            return std::nullopt;
        }
    };
    const auto service = startService({.source = std::make_shared<EmptySource>()});
    const Fetched fetched = fetchReport(*service);
    EXPECT_FALSE(fetched.hasHeader(kDisposition));
    EXPECT_TRUE(
        fetched.hasHeaderLine("ERRORMSG: There are no reports available to download for this selection."));
}

TEST(Answers, AnIncompleteFormGetsAnErrorMessage) {
    const auto service = startService();
    const Fetched fetched = CurlClient(service->caCertificate()).post(reportUrl(*service), "USERNAME=x");
    EXPECT_TRUE(fetched.hasHeader("ERRORMSG: "));
    EXPECT_FALSE(fetched.hasHeader(kDisposition));
}

TEST(Answers, OnlyAPostToTheExactPathIsServed) {
    const auto service = startService();
    CurlClient client(service->caCertificate());
    const std::string host = "https://" + service->reportServiceHost();
    const std::string form = formFor("80012345", "Daily", "20150104");
    EXPECT_EQ(client.post(host + "/autoingestion.tft", form).status, 404);
    EXPECT_EQ(client.post(host + "/autoingestion.tft?x=1", form).status, 404);
    EXPECT_EQ(client.post(host + "/", form).status, 404);
    EXPECT_EQ(client.get(reportUrl(*service)).status, 404);
    EXPECT_EQ(client.post(reportUrl(*service), form).status, 200);
}

TEST(Answers, ErrorMessagesCanBeMadeUp) {
    const Fetched fetched = fetchWith({.content = Content::ErrorMessage, .errorMessage = "Come back later."});
    EXPECT_TRUE(fetched.hasHeaderLine("ERRORMSG: Come back later."));
    EXPECT_FALSE(fetched.hasHeader(kDisposition));
    EXPECT_EQ(fetched.status, 200);
}

TEST(Answers, ReportsCanBeDamaged) {
    const std::string text = madeUpReport();

    const Fetched truncated = fetchWith({.content = Content::TruncatedReport});
    EXPECT_EQ(truncated.result, CURLE_OK);
    EXPECT_TRUE(truncated.hasHeaderLine(kName));
    EXPECT_TRUE(truncated.body.starts_with("\x1F\x8B"));
    EXPECT_FALSE(gunzipped(truncated.body));

    const Fetched wrongChecksum = fetchWith({.content = Content::WrongChecksumReport});
    EXPECT_TRUE(wrongChecksum.hasHeaderLine(kName));
    EXPECT_FALSE(gunzipped(wrongChecksum.body));
    std::string repaired = wrongChecksum.body;
    repaired[repaired.size() - 8] = static_cast<char>(repaired[repaired.size() - 8] ^ 0xFF);
    EXPECT_EQ(gunzipped(repaired), text);

    const Fetched unpacked = fetchWith({.content = Content::UnpackedReport});
    EXPECT_TRUE(unpacked.hasHeaderLine(kName));
    EXPECT_EQ(unpacked.body, text);

    const Fetched notUtf8 = fetchWith({.content = Content::NotUtf8Report});
    EXPECT_TRUE(notUtf8.hasHeaderLine(kName));
    EXPECT_NE(gunzipped(notUtf8.body).value_or("").find("\xC3\x28\xFF"), std::string::npos);
}

TEST(Answers, PagesAndStatusesSuggestNoNameUnlessTold) {
    for (const int status : {200, 429, 500, 502}) {
        const Fetched fetched = fetchWith({.content = Content::HtmlPage, .statusCode = status});
        EXPECT_EQ(fetched.status, status);
        EXPECT_TRUE(fetched.hasHeaderLine("Content-Type: text/html")) << status;
        EXPECT_FALSE(fetched.hasHeader(kDisposition)) << status;
        EXPECT_NE(fetched.body.find("<form"), std::string::npos) << status;
    }
    const Fetched named = fetchWith({.content = Content::HtmlPage, .fileName = "signin.html"});
    EXPECT_TRUE(named.hasHeaderLine("Content-Disposition: attachment; filename=signin.html"));
    EXPECT_EQ(fetchWith({.statusCode = 500}).status, 500);
}

TEST(Answers, BodiesCanBeEmptyOrAnything) {
    const Fetched empty = fetchWith({.content = Content::EmptyBody});
    EXPECT_EQ(empty.result, CURLE_OK);
    EXPECT_TRUE(empty.hasHeaderLine(kName));
    EXPECT_EQ(empty.body, "");

    const Fetched custom = fetchWith({.content = Content::CustomBody, .body = toBytes({"a\0b", 3})});
    EXPECT_TRUE(custom.hasHeaderLine(kName));
    EXPECT_EQ(custom.body, std::string("a\0b", 3));
}

TEST(Answers, FileNamesAndHeaderLinesGoOutAsTheyAre) {
    const std::string names[] = {
        "../../etc/passwd", "/tmp/x",      ".", "..hidden", std::string(300, 'n') + ".txt.gz",
        "\"quoted.txt\"",   "\xC3\xBC.txt"};
    for (const std::string& name : names) {
        const Fetched fetched = fetchWith({.fileName = name});
        EXPECT_TRUE(fetched.hasHeaderLine("Content-Disposition: attachment; filename=" + name)) << name;
    }
    EXPECT_FALSE(fetchWith({.fileName = ""}).hasHeader(kDisposition));

    const Fetched fetched =
        fetchWith({.content = Content::NoReport, .extraHeaderLines = {"errormsg: lower", "ErrorMsg:none  "}});
    EXPECT_TRUE(fetched.hasHeaderLine("errormsg: lower"));
    EXPECT_TRUE(fetched.hasHeaderLine("ErrorMsg:none  "));
}

TEST(Answers, RedirectsPointWhereTheyAreTold) {
    for (const int status : {301, 302, 303, 307, 308}) {
        const auto service = startService();
        const std::string target = "http://" + service->redirectTargetHost() + "/elsewhere";
        service->setBehaviour(
            always({.content = Content::HtmlPage, .statusCode = status, .location = target}));
        const Fetched fetched = fetchReport(*service);
        EXPECT_EQ(fetched.status, status);
        EXPECT_TRUE(fetched.hasHeaderLine("Location: " + target));
        EXPECT_EQ(service->redirectTargetConnections(), 0U) << "this client follows none";

        EXPECT_EQ(CurlClient().get(target).status, 200);
        EXPECT_EQ(service->redirectTargetConnections(), 1U);
        ASSERT_EQ(service->redirectTargetRequests().count(), 1U);
        EXPECT_EQ(service->redirectTargetRequests().requests().front().requestLine,
                  "GET /elsewhere HTTP/1.1");
    }
}

TEST(Answers, ARuleSeesEachRequestWithItsPlaceInTheList) {
    const auto service =
        startService({.behaviour = [](const ReportRequest& request) -> std::optional<Behaviour> {
            if (request.dateType == ReportDateType::Daily && request.index == 1) {
                return Behaviour{.content = Content::WrongSignIn};
            }
            return std::nullopt;
        }});
    CurlClient client(service->caCertificate());
    const auto isReport = [&](std::string_view type, std::string_view vendor) {
        return client.post(reportUrl(*service), formFor(vendor, type, "20150104")).hasHeader(kDisposition);
    };
    EXPECT_TRUE(isReport("Daily", "1"));
    EXPECT_TRUE(isReport("Weekly", "1"));
    EXPECT_TRUE(isReport("Weekly", "1"));
    EXPECT_TRUE(isReport("Daily", "2"));
    EXPECT_FALSE(isReport("Daily", "1"));
    EXPECT_TRUE(isReport("Daily", "1"));
    service->requests().clear();
    EXPECT_TRUE(isReport("Daily", "1"));
    EXPECT_FALSE(isReport("Daily", "1"));
    service->setBehaviour({});
    service->requests().clear();
    EXPECT_TRUE(isReport("Daily", "1"));
    EXPECT_TRUE(isReport("Daily", "1"));
}

}  // namespace
}  // namespace corvane::demo
