#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/date.h"
#include "platform/local_calendar.h"
#include "platform/log.h"

namespace corvane {

/// The engine's report types, in the order in which a run goes through them.
enum class SaleDataReportType { Daily = 0, Weekly = 1, Monthly = 2, Year = 3 };
inline constexpr SaleDataReportType allReportTypes[] = {SaleDataReportType::Daily, SaleDataReportType::Weekly,
                                                        SaleDataReportType::Monthly,
                                                        SaleDataReportType::Year};

/// The same types under the names that the service's side uses.
enum class ReportType { Daily = 0, Weekly = 1, Monthly = 2, Yearly = 3 };

/// 'D', 'W', 'M' or 'Y'.
char reportTypeLetter(SaleDataReportType type);

/// How the dates of the type are written in cache keys and file names.
DateFormat reportKeyFormat(SaleDataReportType type);

/// The text that stands for one fetched report in a cache: its date, and neither account nor type.
std::string reportKey(Date reportDate, SaleDataReportType type);

/// "S_" + letter + "_" + vendor ID + "_" + date text + ".txt".
std::string reportFileName(std::string_view dateText, SaleDataReportType type, std::string_view vendorID);

/// The same calendar day at local midnight.
Date dateWithoutTime(Date date);

/// The report dates of the type whose key is not in the cache, ascending, each at local midnight. Without a
/// cache all dates are due.
std::vector<Date> dueReportDates(SaleDataReportType type, Date now,
                                 const std::optional<std::vector<std::string>>& cache);

/// For weekly reports the last Sunday is logged, which their dates are counted from; nothing for the others.
void logBaseDate(SaleDataReportType type, Date now, Log& log);

}  // namespace corvane
