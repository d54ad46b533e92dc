#pragma once

#include <chrono>
#include <string>

#include "platform/date.h"

/// The Gregorian calendar in the local time zone (TZ, else the system's). Any thread.
namespace corvane {

/// The calendar day that the instant falls on.
std::chrono::year_month_day localDay(Date date);

/// The first instant of the day: midnight, the later one where midnight occurs twice, the first existing
/// instant where a clock change skips it, the first instant after it where the zone skipped the whole day.
Date startOfLocalDay(std::chrono::year_month_day day);

/// 1 for Sunday to 7 for Saturday.
int localWeekday(Date date);

/// The date texts that the service, the caches and the file names use: "20150104", "201501", "2015".
enum class DateFormat { YearMonthDay, YearMonth, Year };
std::string formatLocalDate(Date date, DateFormat format);

/// For log lines: "2015-01-04 12:34:56 +0000", always in UTC.
std::string describeDate(Date date);

}  // namespace corvane
