#pragma once

#include <chrono>
#include <string>

#include "platform/date.h"

/// The Gregorian calendar in the local time zone: the one that TZ names, else the system's. A change of TZ
/// counts from the next call on, a change of the system's zone from the next `refreshLocalTimeZone` on. Any
/// thread, as long as none changes the environment meanwhile. None of the operations fails.
namespace corvane {

/// Looks up the system's time zone anew, for a program that outlives a change of it.
void refreshLocalTimeZone();

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
