#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

#include "demo_service/report_request.h"

namespace corvane::demo {

/// Where the service's reports come from.
class ReportSource {
  public:
    virtual ~ReportSource() = default;

    /// The text of a report, not packed; absent when there is none for this selection. Called from several
    /// threads at once.
    virtual std::optional<std::string> report(std::string_view vendorId, ReportDateType type,
                                              std::chrono::year_month_day date) = 0;
};

}  // namespace corvane::demo
