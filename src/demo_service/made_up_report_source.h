#pragma once

#include <cstddef>

#include "demo_service/report_source.h"

namespace corvane::demo {

/// Makes sales summary reports up: tab-separated UTF-8 lines under the header row of an App Store sales
/// summary report. The same vendor, type and period always give the same bytes, whenever and wherever asked;
/// every day of a month gives that month's report, every day of a year that year's.
class MadeUpReportSource final : public ReportSource {
  public:
    static constexpr std::size_t kDefaultSize = std::size_t{5} * 1024;

    /// A report is about that many bytes before packing, and has at least one row.
    explicit MadeUpReportSource(std::size_t reportSize = kDefaultSize) : reportSize_(reportSize) {}

    std::optional<std::string> report(std::string_view vendorId, ReportDateType type,
                                      std::chrono::year_month_day date) override;

  private:
    std::size_t reportSize_;
};

/// First and last day that a report of that type covers: the day, the week that ends on the day, the month or
/// the year that it lies in.
struct ReportPeriod {
    std::chrono::year_month_day begin;
    std::chrono::year_month_day end;
};
ReportPeriod periodOf(ReportDateType type, std::chrono::year_month_day date);

}  // namespace corvane::demo
