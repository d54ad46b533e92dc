#include "demo_service/scenarios.h"

#include <algorithm>
#include <array>
#include <utility>

namespace corvane::demo {

namespace {

using std::chrono::days;
using std::chrono::sys_days;

/// A client that asks for everything walks lists of a fixed length and step.
struct ListShape {
    std::size_t count;
    days step;
};

ListShape listShapeOf(ReportDateType type) {
    switch (type) {
        case ReportDateType::Weekly:
            return {56, days(7)};
        case ReportDateType::Monthly:
            return {14, days(28)};
        case ReportDateType::Yearly:
            return {11, days(365)};
        case ReportDateType::Daily:
            break;
    }
    return {366, days(1)};
}

using Surroundings = ScenarioSurroundings;

bool isFirst(const ReportRequest& request, const Surroundings&) {
    return request.index == 0;
}

bool isMiddle(const ReportRequest& request, const Surroundings&) {
    return request.index == listShapeOf(request.dateType).count / 2;
}

/// The last date of a list is the one whose next step would lie in the future.
bool isLast(const ReportRequest& request, const Surroundings& surroundings) {
    return sys_days(request.date) + listShapeOf(request.dateType).step > sys_days(surroundings.today());
}

bool isAny(const ReportRequest&, const Surroundings&) {
    return true;
}

struct Scenario {
    ScenarioName name;
    Behaviour behaviour;
    bool (*applies)(const ReportRequest&, const Surroundings&) = isAny;
    std::string_view locationScheme = {};  ///< not empty: a redirect to the target
};

Behaviour content(Content content) {
    return {.content = content};
}

Behaviour status(int statusCode) {
    return {.content = Content::HtmlPage, .statusCode = statusCode};
}

Behaviour delivery(DeliveryKind kind) {
    return {.delivery = {.kind = kind}};
}

Behaviour hugeBody() {
    constexpr std::uint64_t kTenGigabytes = 10'000'000'000;
    return {.delivery = {.kind = DeliveryKind::EndlessBody, .bodySize = kTenGigabytes}};
}

const std::vector<Scenario>& scenarios() {
    static const std::vector<Scenario> all{
        {{"wrong-sign-in", "every sign-in is refused"}, content(Content::WrongSignIn)},
        {{"wrong-sign-in-first", "refused at the first date of a list"},
         content(Content::WrongSignIn),
         isFirst},
        {{"wrong-sign-in-middle", "refused in the middle of a full list"},
         content(Content::WrongSignIn),
         isMiddle},
        {{"wrong-sign-in-last", "refused at the last date of a list"}, content(Content::WrongSignIn), isLast},
        {{"no-report", "there are no reports"}, content(Content::NoReport)},
        {{"other-error", "another ERRORMSG"},
         {.content = Content::ErrorMessage, .errorMessage = "Auto-Ingestion is not available at this time."}},
        {{"truncated", "half of the packed report"}, content(Content::TruncatedReport)},
        {{"wrong-checksum", "a packed report with a wrong checksum"}, content(Content::WrongChecksumReport)},
        {{"unpacked", "reports that are not packed"}, content(Content::UnpackedReport)},
        {{"not-utf8", "reports that are not UTF-8"}, content(Content::NotUtf8Report)},
        {{"empty", "an empty body under the name of a report"}, content(Content::EmptyBody)},
        {{"sign-in-page", "a sign-in page without a file name"}, content(Content::HtmlPage)},
        {{"sign-in-page-named", "a sign-in page with the name of a file"},
         {.content = Content::HtmlPage, .fileName = "signin.html"}},
        {{"status-429", "429 Too Many Requests"}, status(429)},
        {{"status-500", "500 Internal Server Error"}, status(500)},
        {{"status-502", "502 Bad Gateway"}, status(502)},
        {{"redirect-301", "301 to another port, plain http"}, status(301), isAny, "http"},
        {{"redirect-302", "302 to another port, plain http"}, status(302), isAny, "http"},
        {{"redirect-303", "303 to another port, plain http"}, status(303), isAny, "http"},
        {{"redirect-307", "307 to another port, plain http"}, status(307), isAny, "http"},
        {{"redirect-308", "308 to another port, plain http"}, status(308), isAny, "http"},
        {{"redirect-307-https", "307 to another port, https"}, status(307), isAny, "https"},
        {{"reset", "the connection is reset before an answer"}, delivery(DeliveryKind::ResetBeforeAnswer)},
        {{"reset-in-body", "the connection is reset in the body"}, delivery(DeliveryKind::ResetInBody)},
        {{"close", "the connection is closed before an answer"}, delivery(DeliveryKind::CloseBeforeAnswer)},
        {{"cut-body", "less of the body than announced"}, delivery(DeliveryKind::CutBody)},
        {{"cut-chunk", "a chunk is cut off"}, delivery(DeliveryKind::CutChunk)},
        {{"stall", "no answer ever"}, delivery(DeliveryKind::StallBeforeHeader)},
        {{"stall-in-body", "silence in the middle of the body"}, delivery(DeliveryKind::StallInBody)},
        {{"endless-headers", "header lines without end"}, delivery(DeliveryKind::EndlessHeaders)},
        {{"endless-body", "a body without end"}, delivery(DeliveryKind::EndlessBody)},
        {{"huge-body", "a body of 10 GB"}, hugeBody()},
        {{"trickle", "one byte a second"}, delivery(DeliveryKind::Trickle)},
    };
    return all;
}

Behaviour withLocation(Behaviour behaviour, const Scenario& scenario, const Surroundings& surroundings) {
    if (!scenario.locationScheme.empty()) {
        behaviour.location = std::string(scenario.locationScheme) + "://" + surroundings.redirectTarget +
                             "/autoingestion.tft?";
    }
    return behaviour;
}

}  // namespace

std::vector<ScenarioName> scenarioNames() {
    std::vector<ScenarioName> names;
    std::ranges::transform(scenarios(), std::back_inserter(names), &Scenario::name);
    return names;
}

std::optional<BehaviourRule> scenarioNamed(std::string_view name, const ScenarioSurroundings& surroundings) {
    const auto found =
        std::ranges::find(scenarios(), name, [](const Scenario& each) { return each.name.name; });
    if (found == scenarios().end()) {
        return std::nullopt;
    }
    const Scenario& scenario = *found;  // lives as long as the process
    return [&scenario, surroundings, behaviour = withLocation(scenario.behaviour, scenario, surroundings)](
               const ReportRequest& request) -> std::optional<Behaviour> {
        if (!scenario.applies(request, surroundings)) {
            return std::nullopt;
        }
        return behaviour;
    };
}

BehaviourRule onEvery(std::size_t n, BehaviourRule rule) {
    return [n, rule = std::move(rule)](const ReportRequest& request) -> std::optional<Behaviour> {
        if ((request.index + 1) % n != 0) {
            return std::nullopt;
        }
        return rule(request);
    };
}

}  // namespace corvane::demo
