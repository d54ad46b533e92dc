#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace corvane::demo {

enum class ReportDateType { Daily, Weekly, Monthly, Yearly };

/// One request for a report, as the form of the client says it.
struct ReportRequest {
    std::string userName{};
    std::string password{};
    std::string vendorId{};
    ReportDateType dateType = ReportDateType::Daily;
    std::chrono::year_month_day
        date{};             ///< a valid calendar day; always a whole day, also for months and years
    std::size_t index = 0;  ///< how many requests of this vendor and date type came before
};

/// Reads the body of a request. Absent when the vendor number, the date type or the date is missing or
/// unreadable. The monthly type is accepted in both spellings, "Monhtly" being what clients send.
std::optional<ReportRequest> reportRequestFromForm(std::string_view body);

/// "D", "W", "M" or "Y", as in the names of report files.
std::string_view letterOf(ReportDateType type);

/// The name under which the service hands out a report, for example S_D_80012345_20150104.txt.gz; months are
/// written as 201501 and years as 2015.
std::string reportFileName(const ReportRequest& request);

}  // namespace corvane::demo
