// The service as a whole: its connections, what it notes, its certificates, its start and its end.
#include "demo_service/demo_service.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "demo_service/service_client.h"

namespace corvane::demo {
namespace {

using namespace std::chrono_literals;
using std::chrono::steady_clock;

/// Waits for what other threads bring about.
template <typename Condition>
bool becomesTrue(Condition condition) {
    const auto end = steady_clock::now() + 10s;
    while (!condition()) {
        if (steady_clock::now() > end) {
            return false;
        }
        std::this_thread::sleep_for(1ms);
    }
    return true;
}

TEST(DemoService, NotesRequestsByteForByte) {
    const auto service = startService();
    RawTlsClient client(service->port());
    const std::string request =
        "POST /autoingestion.tft? HTTP/1.1\r\nHost: localhost\r\nX-Odd:  two blanks \r\ncontent-length: "
        "10\r\n"
        "\r\nVNDNUMBER=";
    ASSERT_TRUE(client.send(request.substr(0, 50)));
    ASSERT_TRUE(client.send(request.substr(50)));
    ASSERT_TRUE(service->requests().waitForCount(1, 10s));
    const ReceivedRequest received = service->requests().requests().front();
    EXPECT_EQ(received.requestLine, "POST /autoingestion.tft? HTTP/1.1");
    const std::vector<std::string> headerLines{"Host: localhost", "X-Odd:  two blanks ",
                                               "content-length: 10"};
    EXPECT_EQ(received.headerLines, headerLines);
    EXPECT_EQ(asText(received.body), "VNDNUMBER=");
    EXPECT_EQ(received.connection, 1U);
    EXPECT_FALSE(received.reportRequest);
    EXPECT_EQ(service->receivedBytes(), request.size());
}

TEST(DemoService, AnswersRequestsThatComeInOnePiece) {
    const auto service = startService();
    RawTlsClient client(service->port());
    ASSERT_TRUE(client.send(rawReportRequest("20150104") + rawReportRequest("20150105")));
    ASSERT_TRUE(service->requests().waitForCount(2, 10s));
    const auto requests = service->requests().requests();
    ASSERT_TRUE(requests[0].reportRequest && requests[1].reportRequest);
    EXPECT_EQ(requests[0].reportRequest->index, 0U);
    EXPECT_EQ(requests[1].reportRequest->index, 1U);
    EXPECT_EQ(requests[0].connection, requests[1].connection);
}

TEST(DemoService, EndsAConnectionThatSendsNoRequest) {
    const std::string rows[] = {
        std::string(70'000, 'x'),
        "POST /autoingestion.tft? HTTP/1.1\r\nContent-Length: -1\r\n\r\n",
        "POST /autoingestion.tft? HTTP/1.1\r\nContent-Length: 99999999\r\n\r\n",
        "POST /autoingestion.tft? HTTP/1.1\r\nContent-Length: 1x\r\n\r\n",
    };
    const auto service = startService();
    for (const std::string& row : rows) {
        RawTlsClient client(service->port());
        static_cast<void>(client.send(row));
        EXPECT_EQ(client.readToTheEnd(), "") << row.substr(0, 80);
        EXPECT_NE(client.end(), RawTlsClient::End::TimedOut) << row.substr(0, 80);
    }
    EXPECT_EQ(service->requests().count(), 0U);
}

TEST(DemoService, ServesManyKeptConnectionsAtOnce) {
    constexpr std::size_t kClients = 64;
    constexpr std::size_t kRequests = 10;
    const auto service = startService();
    std::vector<std::size_t> reports(kClients);
    std::vector<std::thread> threads;
    threads.reserve(kClients);
    for (std::size_t number = 0; number < kClients; ++number) {
        threads.emplace_back([&, number] {
            CurlClient client(service->caCertificate());
            const std::string vendor = std::to_string(number);
            for (std::size_t round = 0; round < kRequests; ++round) {
                const Fetched fetched =
                    client.post(reportUrl(*service), formFor(vendor, "Daily", "20150104"));
                reports[number] += gunzipped(fetched.body) ? 1U : 0U;
                // Nobody leaves before everybody has come.
                becomesTrue([&] { return service->acceptedConnections() == kClients; });
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(reports, std::vector<std::size_t>(kClients, kRequests));
    EXPECT_EQ(service->acceptedConnections(), kClients);
    EXPECT_EQ(service->peakOpenConnections(), kClients);
    EXPECT_EQ(service->requests().count(), kClients * kRequests);
    EXPECT_TRUE(becomesTrue([&] { return service->openConnections() == 0; }));
}

TEST(DemoService, KeepsNoRequestsWhenTold) {
    const auto service = startService({.keepsRequests = false});
    EXPECT_EQ(fetchReport(*service).status, 200);
    EXPECT_EQ(service->requests().count(), 1U);
    EXPECT_TRUE(service->requests().requests().empty());
}

TEST(DemoService, EndsAtOnceHoweverConnectionsAreStalled) {
    const DeliveryKind kinds[] = {DeliveryKind::StallBeforeHeader, DeliveryKind::StallInBody,
                                  DeliveryKind::EndlessHeaders,    DeliveryKind::EndlessBody,
                                  DeliveryKind::Trickle,           DeliveryKind::Whole};
    for (const DeliveryKind kind : kinds) {
        const Delivery delivery{.kind = kind, .interval = 1h};
        auto service =
            startService({.behaviour = [=](const ReportRequest&) { return Behaviour{.delivery = delivery}; },
                          .updateFeed = {.delivery = {.kind = DeliveryKind::StallBeforeHeader}}});
        RawTlsClient client(service->port());
        ASSERT_TRUE(client.send(rawReportRequest()));
        ASSERT_TRUE(service->requests().waitForCount(1, 10s));
        const auto start = steady_clock::now();
        service.reset();
        EXPECT_LT(steady_clock::now() - start, 500ms) << "delivery " << static_cast<int>(kind);
    }
}

TEST(DemoService, EndsWhileConnectionsAreSilent) {
    auto service = startService();
    const FileDescriptor withoutHandshake = connectTo(service->port());
    const RawTlsClient withoutRequest(service->port());
    const FileDescriptor atTheFeed = connectTo(service->updatePort());
    ASSERT_TRUE(becomesTrue([&] { return service->openConnections() == 2; }));
    const auto start = steady_clock::now();
    service.reset();
    EXPECT_LT(steady_clock::now() - start, 500ms);
}

TEST(DemoService, IsRefusedWithABadCertificate) {
    struct Row {
        TlsVariant variant;
        std::string host;
        CURLcode result;
    };
    const Row rows[] = {
        {TlsVariant::Trusted, "localhost", CURLE_OK},
        {TlsVariant::Trusted, "127.0.0.1", CURLE_OK},
        {TlsVariant::SelfSigned, "localhost", CURLE_PEER_FAILED_VERIFICATION},
        {TlsVariant::WrongHost, "localhost", CURLE_PEER_FAILED_VERIFICATION},
        {TlsVariant::Expired, "localhost", CURLE_PEER_FAILED_VERIFICATION},
        {TlsVariant::Tls11, "localhost", CURLE_SSL_CONNECT_ERROR},
    };
    for (const Row& row : rows) {
        const auto service = startService({.tls = row.variant});
        const std::string url =
            "https://" + row.host + ":" + std::to_string(service->port()) + "/autoingestion.tft?";
        CurlClient client(service->caCertificate());
        const Fetched fetched = client.post(url, formFor("1", "Daily", "20150104"));
        EXPECT_EQ(fetched.result, row.result) << row.host << " variant " << static_cast<int>(row.variant);
        EXPECT_EQ(service->acceptedConnections(), 1U);
        EXPECT_EQ(service->receivedBytes() > 0, row.result == CURLE_OK);
    }
    const auto service = startService();
    EXPECT_EQ(CurlClient().get(reportUrl(*service)).result, CURLE_PEER_FAILED_VERIFICATION)
        << "the system does not know the authority";
}

TEST(DemoService, CanHaveACertificateForAnotherName) {
    // Names that end in .localhost are always this machine's.
    struct Row {
        std::string hostName;
        std::string host;
        CURLcode result;
    };
    const Row rows[] = {
        {"", "reports.localhost", CURLE_PEER_FAILED_VERIFICATION},
        {"reports.localhost", "reports.localhost", CURLE_OK},
        {"reports.localhost", "localhost", CURLE_OK},
        {"reports.localhost", "elsewhere.localhost", CURLE_PEER_FAILED_VERIFICATION},
    };
    for (const Row& row : rows) {
        const auto service = startService({.hostName = row.hostName});
        const std::string url =
            "https://" + row.host + ":" + std::to_string(service->port()) + "/autoingestion.tft?";
        CurlClient client(service->caCertificate());
        EXPECT_EQ(client.post(url, formFor("1", "Daily", "20150104")).result, row.result)
            << row.host << " with the name " << row.hostName;
    }
}

TEST(DemoService, SpeaksTheProtocolVersionOfItsVariant) {
    const auto old = startService({.tls = TlsVariant::Tls11});
    EXPECT_EQ(RawTlsClient(old->port()).protocol(), "TLSv1.1");
    const auto current = startService();
    EXPECT_EQ(RawTlsClient(current->port()).protocol(), "TLSv1.3");
}

TEST(DemoService, WritesItsAuthority) {
    const auto service = startService();
    const auto path = std::filesystem::temp_directory_path() /
                      ("corvane-demo-ca-" + std::to_string(service->port()) + ".pem");
    ASSERT_TRUE(service->writeCaFile(path));
    std::ifstream file(path);
    const std::string text(std::istreambuf_iterator<char>(file), {});
    std::filesystem::remove(path);
    EXPECT_EQ(text, service->caCertificate());
    EXPECT_TRUE(text.starts_with("-----BEGIN CERTIFICATE-----"));
    EXPECT_FALSE(service->writeCaFile("/nowhere/at/all.pem"));
}

TEST(DemoService, DoesNotStartOnATakenPort) {
    const auto first = startService();
    std::string problem;
    EXPECT_FALSE(DemoService::start({.port = first->port()}, problem));
    EXPECT_NE(problem.find(std::to_string(first->port())), std::string::npos) << problem;
}

TEST(UpdateFeed, OffersAVersion) {
    const auto service = startService({.updateFeed = updateFeedOffering("1.2", "Ä \"b\"\nc", "https://x/y")});
    const Fetched fetched = CurlClient().get(feedUrl(*service));
    EXPECT_EQ(fetched.status, 200);
    EXPECT_TRUE(fetched.hasHeaderLine("Content-Type: application/json"));
    EXPECT_EQ(fetched.body,
              "{\n    \"downloadLink\": \"https://x/y\",\n    \"updateNotes\": \"Ä \\\"b\\\"\\nc\",\n"
              "    \"version\": \"1.2\"\n}\n");
    ASSERT_EQ(service->updateRequests().count(), 1U);
    EXPECT_EQ(service->updateRequests().requests().front().requestLine, "GET /Plovance/update.json HTTP/1.1");
}

TEST(UpdateFeed, CanBeAnything) {
    const auto service = startService();
    CurlClient client;
    EXPECT_EQ(client.get(feedUrl(*service)).status, 404) << "without a feed";
    service->setUpdateFeed({.body = std::string(2'000'000, ' ') + "[]"});
    EXPECT_EQ(client.get(feedUrl(*service)).body.size(), 2'000'002U);
    EXPECT_EQ(client.get("http://" + service->updateHost() + "/other.json").status, 404);
    service->setUpdateFeed({.body = "<html>", .contentType = "text/html"});
    EXPECT_TRUE(client.get(feedUrl(*service)).hasHeaderLine("Content-Type: text/html"));
    service->setUpdateFeed({});
    EXPECT_EQ(client.get(feedUrl(*service)).body, "");
    service->setUpdateFeed({.delivery = {.kind = DeliveryKind::ResetBeforeAnswer}});
    EXPECT_NE(client.get(feedUrl(*service)).result, CURLE_OK);
    service->setUpdateFeed({.delivery = {.kind = DeliveryKind::StallBeforeHeader}});
    client.setTimeout(100ms);
    EXPECT_EQ(client.get(feedUrl(*service)).result, CURLE_OPERATION_TIMEDOUT);
}

}  // namespace
}  // namespace corvane::demo
