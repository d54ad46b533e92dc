#include "demo_service/report_request.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

#include "demo_service/form.h"

namespace corvane::demo {

namespace {

std::optional<ReportDateType> dateTypeNamed(std::string_view name) {
    if (name == "Daily") {
        return ReportDateType::Daily;
    }
    if (name == "Weekly") {
        return ReportDateType::Weekly;
    }
    if (name == "Monhtly" || name == "Monthly") {
        return ReportDateType::Monthly;
    }
    if (name == "Yearly") {
        return ReportDateType::Yearly;
    }
    return std::nullopt;
}

std::optional<std::chrono::year_month_day> dateFromDigits(std::string_view text) {
    const bool areDigits = std::ranges::all_of(text, [](char each) { return each >= '0' && each <= '9'; });
    if (text.size() != 8 || !areDigits) {
        return std::nullopt;
    }
    unsigned number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    const std::chrono::year_month_day date{std::chrono::year(static_cast<int>(number / 10000)),
                                           std::chrono::month(number / 100 % 100),
                                           std::chrono::day(number % 100)};
    if (!date.ok()) {
        return std::nullopt;
    }
    return date;
}

std::string dateTextOf(const ReportRequest& request) {
    const int year = static_cast<int>(request.date.year());
    const auto month = static_cast<unsigned>(request.date.month());
    switch (request.dateType) {
        case ReportDateType::Monthly:
            return fmt::format("{:04}{:02}", year, month);
        case ReportDateType::Yearly:
            return fmt::format("{:04}", year);
        case ReportDateType::Daily:
        case ReportDateType::Weekly:
            break;
    }
    return fmt::format("{:04}{:02}{:02}", year, month, static_cast<unsigned>(request.date.day()));
}

}  // namespace

std::optional<ReportRequest> reportRequestFromForm(std::string_view body) {
    const auto fields = fieldsOfForm(body);
    const auto field = [&](std::string_view name) {
        const auto found = fields.find(name);
        return found == fields.end() ? std::string() : found->second;
    };
    const auto dateType = dateTypeNamed(field("DATETYPE"));
    const auto date = dateFromDigits(field("REPORTDATE"));
    ReportRequest request{
        .userName = field("USERNAME"), .password = field("PASSWORD"), .vendorId = field("VNDNUMBER")};
    if (request.vendorId.empty() || !dateType || !date) {
        return std::nullopt;
    }
    request.dateType = *dateType;
    request.date = *date;
    return request;
}

std::string_view letterOf(ReportDateType type) {
    switch (type) {
        case ReportDateType::Weekly:
            return "W";
        case ReportDateType::Monthly:
            return "M";
        case ReportDateType::Yearly:
            return "Y";
        case ReportDateType::Daily:
            break;
    }
    return "D";
}

std::string reportFileName(const ReportRequest& request) {
    return fmt::format("S_{}_{}_{}.txt.gz", letterOf(request.dateType), request.vendorId,
                       dateTextOf(request));
}

}  // namespace corvane::demo
