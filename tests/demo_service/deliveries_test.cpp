// How answers are put on the wire, seen byte by byte.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>

#include "demo_service/service_client.h"

namespace corvane::demo {
namespace {

using namespace std::chrono_literals;
using End = RawTlsClient::End;

constexpr std::string_view kHeadEnd = "\r\n\r\n";

Behaviour deliveredAs(Delivery delivery) {
    return {.content = Content::CustomBody, .body = toBytes("0123456789"), .delivery = delivery};
}

std::unique_ptr<DemoService> serviceThatDelivers(Delivery delivery) {
    return startService({.behaviour = [=](const ReportRequest&) { return deliveredAs(delivery); }});
}

std::string bodyOf(const std::string& message) {
    const std::size_t end = message.find(kHeadEnd);
    return end == std::string::npos ? "no head" : message.substr(end + kHeadEnd.size());
}

/// What came over a connection that carried one request, and how it ended.
struct Received {
    std::string message;
    End end;
};

Received receivedAs(DeliveryKind kind) {
    const auto service = serviceThatDelivers({.kind = kind});
    RawTlsClient client(service->port());
    EXPECT_TRUE(client.send(rawReportRequest()));
    std::string message = client.readToTheEnd();
    return {std::move(message), client.end()};
}

TEST(Deliveries, ChunkedIsACompleteAnswer) {
    const auto service = serviceThatDelivers({.kind = DeliveryKind::Chunked});
    CurlClient client(service->caCertificate());
    for (int round = 0; round < 2; ++round) {
        const Fetched fetched = client.post(reportUrl(*service), formFor("1", "Daily", "20150104"));
        EXPECT_EQ(fetched.result, CURLE_OK);
        EXPECT_TRUE(fetched.hasHeaderLine("Transfer-Encoding: chunked"));
        EXPECT_EQ(fetched.body, "0123456789");
    }
    EXPECT_EQ(service->acceptedConnections(), 1U);
}

TEST(Deliveries, AResetEndsTheConnectionHard) {
    const Received before = receivedAs(DeliveryKind::ResetBeforeAnswer);
    EXPECT_EQ(before.message, "");
    EXPECT_EQ(before.end, End::Reset);

    // What was under way when the reset came may or may not have been read.
    const Received inBody = receivedAs(DeliveryKind::ResetInBody);
    EXPECT_EQ(inBody.end, End::Reset);
    EXPECT_EQ(inBody.message.find("56789"), std::string::npos);
}

TEST(Deliveries, ACloseBeforeTheAnswerIsInOrder) {
    const Received received = receivedAs(DeliveryKind::CloseBeforeAnswer);
    EXPECT_EQ(received.message, "");
    EXPECT_EQ(received.end, End::ClosedInOrder);
}

TEST(Deliveries, ACutBodyIsShorterThanAnnounced) {
    const Received received = receivedAs(DeliveryKind::CutBody);
    EXPECT_NE(received.message.find("\r\nContent-Length: 10\r\n"), std::string::npos) << received.message;
    EXPECT_EQ(bodyOf(received.message), "01234");
    EXPECT_EQ(received.end, End::ClosedInOrder);

    const auto service = serviceThatDelivers({.kind = DeliveryKind::CutBody});
    EXPECT_EQ(fetchReport(*service).result, CURLE_PARTIAL_FILE);
}

TEST(Deliveries, AnEmptyBodyCanBeCutToo) {
    const auto service = startService({.behaviour = [](const ReportRequest&) {
        return Behaviour{.content = Content::EmptyBody, .delivery = {.kind = DeliveryKind::CutBody}};
    }});
    EXPECT_EQ(fetchReport(*service).result, CURLE_PARTIAL_FILE);
}

TEST(Deliveries, ACutChunkEndsInsideAChunk) {
    const Received received = receivedAs(DeliveryKind::CutChunk);
    EXPECT_EQ(bodyOf(received.message), "b\r\n01234");
    EXPECT_EQ(received.end, End::ClosedInOrder);

    const auto service = serviceThatDelivers({.kind = DeliveryKind::CutChunk});
    EXPECT_NE(fetchReport(*service).result, CURLE_OK);
}

TEST(Deliveries, AStallKeepsTheConnectionOpen) {
    const std::pair<DeliveryKind, std::string> rows[] = {{DeliveryKind::StallBeforeHeader, "no head"},
                                                         {DeliveryKind::StallInBody, "01234"}};
    for (const auto& [kind, body] : rows) {
        const auto service = serviceThatDelivers({.kind = kind});
        RawTlsClient client(service->port());
        ASSERT_TRUE(client.send(rawReportRequest()));
        client.setReadTimeout(100ms);
        EXPECT_EQ(bodyOf(client.readToTheEnd()), body);
        EXPECT_EQ(client.end(), End::TimedOut) << body;
    }
}

TEST(Deliveries, EndlessHeadersNeverReachTheBody) {
    const auto service = serviceThatDelivers({.kind = DeliveryKind::EndlessHeaders});
    RawTlsClient client(service->port());
    ASSERT_TRUE(client.send(rawReportRequest()));
    const std::string head = client.read(3'000'000);
    EXPECT_EQ(head.size(), 3'000'000U);
    EXPECT_TRUE(head.starts_with("HTTP/1.1 200 OK\r\nX-Endless-0: "));
    EXPECT_EQ(head.find(kHeadEnd), std::string::npos);
}

TEST(Deliveries, AnEndlessBodyGoesOnAndOn) {
    const auto service = serviceThatDelivers({.kind = DeliveryKind::EndlessBody});
    RawTlsClient client(service->port());
    ASSERT_TRUE(client.send(rawReportRequest()));
    const std::string message = client.read(3'000'000);
    EXPECT_EQ(message.size(), 3'000'000U);
    EXPECT_NE(message.find("Transfer-Encoding: chunked"), std::string::npos);
}

TEST(Deliveries, AHugeBodyIsAnnouncedAndSent) {
    const auto service = serviceThatDelivers({.kind = DeliveryKind::EndlessBody, .bodySize = 10'000'000'000});
    RawTlsClient client(service->port());
    ASSERT_TRUE(client.send(rawReportRequest()));
    const std::string message = client.read(3'000'000);
    EXPECT_EQ(message.size(), 3'000'000U);
    EXPECT_NE(message.find("\r\nContent-Length: 10000000000\r\n"), std::string::npos);
}

TEST(Deliveries, ASizedBodyEndsAtItsSize) {
    const auto service = serviceThatDelivers({.kind = DeliveryKind::EndlessBody, .bodySize = 1'000'001});
    const Fetched fetched = fetchReport(*service);
    EXPECT_EQ(fetched.result, CURLE_OK);
    EXPECT_EQ(fetched.body.size(), 1'000'001U);
}

TEST(Deliveries, ATrickleTakesItsInterval) {
    using std::chrono::steady_clock;
    for (const DeliveryKind kind : {DeliveryKind::Trickle, DeliveryKind::TrickleBody}) {
        const auto service = serviceThatDelivers({.kind = kind, .interval = 5ms});
        const auto start = steady_clock::now();
        const Fetched fetched = fetchReport(*service);
        const auto taken = steady_clock::now() - start;
        EXPECT_EQ(fetched.result, CURLE_OK);
        EXPECT_EQ(fetched.body, "0123456789");
        const bool isHeadSlowToo = kind == DeliveryKind::Trickle;
        EXPECT_GE(taken, isHeadSlowToo ? 5ms * 110 : 5ms * 9);
    }
}

TEST(Deliveries, LatencyPassesBeforeTheAnswer) {
    using std::chrono::steady_clock;
    const auto service = startService(
        {.behaviour = [](const ReportRequest&) { return Behaviour{.delivery = {.latency = 40ms}}; },
         .latency = 40ms});
    const auto start = steady_clock::now();
    EXPECT_EQ(fetchReport(*service).result, CURLE_OK);
    EXPECT_GE(steady_clock::now() - start, 80ms);
}

}  // namespace
}  // namespace corvane::demo
