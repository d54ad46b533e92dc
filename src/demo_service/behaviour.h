#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "demo_service/report_request.h"
#include "platform/bytes.h"

namespace corvane::demo {

/// What an answer holds.
enum class Content {
    Report,               ///< the source's report, packed; what the source does not have is `NoReport`
    TruncatedReport,      ///< the packed report without its last half
    WrongChecksumReport,  ///< the packed report with another checksum in its trailer
    UnpackedReport,       ///< the report as plain text, under the name of a packed one
    NotUtf8Report,        ///< packed, with bytes inside that are no UTF-8
    WrongSignIn,          ///< ERRORMSG: Your AppleConnect account or password was entered incorrectly.
    NoReport,             ///< ERRORMSG: There are no reports available to download for this selection.
    ErrorMessage,         ///< ERRORMSG: `Behaviour::errorMessage`
    HtmlPage,             ///< a sign-in page
    EmptyBody,            ///< no byte, under the name of a report
    CustomBody,           ///< `Behaviour::body`, under the name of a report
};

/// How an answer is put on the wire. All but `Whole` and `Chunked` end the connection.
enum class DeliveryKind {
    Whole,
    Chunked,            ///< whole, with Transfer-Encoding: chunked
    ResetBeforeAnswer,  ///< the connection is reset, nothing was sent
    ResetInBody,        ///< the connection is reset after half of the body
    CloseBeforeAnswer,  ///< the connection is closed in order, nothing was sent
    CutBody,            ///< closed in order after half of the body that Content-Length announced
    CutChunk,           ///< closed in order in the middle of a chunk
    StallBeforeHeader,  ///< nothing is sent and the connection stays open
    StallInBody,        ///< half of the body is sent and the connection stays open
    EndlessHeaders,     ///< header lines until the client goes away
    EndlessBody,        ///< a body of `Delivery::bodySize` bytes, or without end
    Trickle,            ///< one byte of head and body per `Delivery::interval`
    TrickleBody,        ///< the head at once, then one byte of the body per `Delivery::interval`
};

struct Delivery {
    DeliveryKind kind = DeliveryKind::Whole;
    std::chrono::milliseconds latency{0};  ///< passes before the first byte of the answer
    std::chrono::milliseconds interval{1000};
    std::optional<std::uint64_t> bodySize{};  ///< of `EndlessBody`, announced; absent: chunked, without end
};

/// What the service does with one request for a report. The default is its ordinary work.
struct Behaviour {
    Content content = Content::Report;
    int statusCode = 200;
    std::string errorMessage{};
    Bytes body{};
    std::optional<std::string> fileName{};  ///< replaces the suggested name, sent as it is; "" suggests none
    std::string location{};                 ///< header Location, for redirects; "" for none
    std::vector<std::string> extraHeaderLines{};  ///< sent as they are, for example "errormsg: text"
    Delivery delivery{};
};

/// Decides what is done with a request, before any sign-in is checked. Absent leaves the request to the
/// service's ordinary work. Called from several threads at once.
using BehaviourRule = std::function<std::optional<Behaviour>(const ReportRequest&)>;

}  // namespace corvane::demo
