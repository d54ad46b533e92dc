#include "demo_service/report_answers.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

#include "demo_service/gzip_packing.h"

namespace corvane::demo {

namespace {

constexpr std::string_view kWrongSignIn = "Your AppleConnect account or password was entered incorrectly.";
constexpr std::string_view kNoReport = "There are no reports available to download for this selection.";
constexpr std::string_view kIncompleteForm = "Please enter all the parameters correctly.";

constexpr std::string_view kSignInPage =
    "<!DOCTYPE html>\n<html><head><title>Sign in</title></head><body>\n"
    "<form method=\"post\" action=\"/signin\"><input name=\"account\"><input name=\"password\" "
    "type=\"password\"><button>Sign in</button></form>\n</body></html>\n";

/// The service tells of a failure by a header and no attachment, so that the client takes the file's name
/// from the address: autoingestion.tft.
Answer errorAnswer(std::string_view message) {
    return {200, {"Content-Type: text/html", "ERRORMSG: " + std::string(message)}, toBytes(message)};
}

Answer attachment(Bytes body) {
    return {200, {"Content-Type: application/a-gzip"}, std::move(body)};
}

Bytes truncated(Bytes packed) {
    packed.resize(packed.size() / 2);
    return packed;
}

Bytes withWrongChecksum(Bytes packed) {
    constexpr std::size_t kTrailerSize = 8;  // checksum and length, each of four bytes
    packed[packed.size() - kTrailerSize] ^= 0xFFU;
    return packed;
}

std::string withoutUtf8(std::string text) {
    text.insert(text.size() / 2, "\xC3\x28\xFF");
    return text;
}

/// What the content needs of a report; `text` is the report's.
Answer reportAnswer(Content content, std::string text) {
    switch (content) {
        case Content::TruncatedReport:
            return attachment(truncated(gzipPacked(text)));
        case Content::WrongChecksumReport:
            return attachment(withWrongChecksum(gzipPacked(text)));
        case Content::UnpackedReport:
            return attachment(toBytes(text));
        case Content::NotUtf8Report:
            return attachment(gzipPacked(withoutUtf8(std::move(text))));
        default:
            return attachment(gzipPacked(text));
    }
}

bool isReport(Content content) {
    switch (content) {
        case Content::Report:
        case Content::TruncatedReport:
        case Content::WrongChecksumReport:
        case Content::UnpackedReport:
        case Content::NotUtf8Report:
            return true;
        default:
            return false;
    }
}

bool suggestsReportName(Content content) {
    return isReport(content) || content == Content::EmptyBody || content == Content::CustomBody;
}

Answer contentAnswer(const Behaviour& behaviour) {
    switch (behaviour.content) {
        case Content::WrongSignIn:
            return errorAnswer(kWrongSignIn);
        case Content::ErrorMessage:
            return errorAnswer(behaviour.errorMessage);
        case Content::HtmlPage:
            return {200, {"Content-Type: text/html"}, toBytes(kSignInPage)};
        case Content::EmptyBody:
            return attachment({});
        case Content::CustomBody:
            return attachment(behaviour.body);
        default:
            return errorAnswer(kNoReport);
    }
}

std::string suggestedName(const ReportRequest& request, const Behaviour& behaviour, bool isNamedByDefault) {
    if (behaviour.fileName) {
        return *behaviour.fileName;
    }
    return isNamedByDefault ? reportFileName(request) : std::string();
}

}  // namespace

Behaviour ordinaryBehaviour(const ReportRequest& request, const std::vector<DemoAccount>& accounts) {
    const bool isRight = accounts.empty() || std::ranges::any_of(accounts, [&](const DemoAccount& account) {
                             return account.userName == request.userName &&
                                    account.password == request.password &&
                                    account.vendorId == request.vendorId;
                         });
    return {.content = isRight ? Content::Report : Content::WrongSignIn};
}

Answer answerFor(const ReportRequest& request, const Behaviour& behaviour, ReportSource& source) {
    std::optional<std::string> text;
    if (isReport(behaviour.content)) {
        text = source.report(request.vendorId, request.dateType, request.date);
    }
    const bool isMissing = isReport(behaviour.content) && !text;
    Answer answer = text ? reportAnswer(behaviour.content, std::move(*text)) : contentAnswer(behaviour);
    answer.statusCode = behaviour.statusCode;
    const std::string name =
        suggestedName(request, behaviour, suggestsReportName(behaviour.content) && !isMissing);
    if (!name.empty()) {
        answer.headerLines.push_back("Content-Disposition: attachment; filename=" + name);
    }
    if (!behaviour.location.empty()) {
        answer.headerLines.push_back("Location: " + behaviour.location);
    }
    answer.headerLines.insert(answer.headerLines.end(), behaviour.extraHeaderLines.begin(),
                              behaviour.extraHeaderLines.end());
    return answer;
}

Answer incompleteFormAnswer() {
    return errorAnswer(kIncompleteForm);
}

}  // namespace corvane::demo
