#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "demo_service/report_request.h"

namespace corvane::test {

/// The days that a first import asks for, ascending, in a zone without clock changes.
std::vector<std::chrono::sys_days> firstImportDays(demo::ReportDateType type, std::chrono::sys_days today);

std::chrono::sys_days todayInUtc();

/// "20150104" or, by type, "201501" or "2015".
std::string keyOf(demo::ReportDateType type, std::chrono::sys_days day);

/// The keys of everything that could be due today or tomorrow.
std::vector<std::string> fullCache();

/// A cache in which nothing is missing but those days.
std::vector<std::string> fullCacheWithout(const std::vector<std::chrono::sys_days>& days);

/// Days before today, ascending, that have a daily report only: no Sundays, which share their key with a
/// week.
std::vector<std::chrono::sys_days> recentWorkdays(std::size_t count);

}  // namespace corvane::test
