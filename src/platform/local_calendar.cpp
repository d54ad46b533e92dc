#include "platform/local_calendar.h"

#include <fmt/format.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <ctime>

namespace corvane {

namespace {

using std::chrono::seconds;
using std::chrono::sys_days;
using std::chrono::sys_seconds;

// Local wall time, counted like UTC: the day and the time of day are plain divisions.
using LocalSeconds = std::chrono::local_seconds;

// No zone is further from UTC than this, so the offsets in force on both sides of a local midnight are those
// in force this long before and after the same midnight in UTC.
constexpr std::chrono::hours beyondAnyOffset{16};

// localtime_r() alone stays with the zone that the process found first. tzset() finds an unchanged TZ
// cheaply, but without a TZ it asks for the system's zone file each time, so that is left to
// refreshLocalTimeZone().
void followTimeZoneVariable() {
    static std::atomic<bool> wasSet{true};
    const bool isSet = std::getenv("TZ") != nullptr;
    if (wasSet.exchange(isSet) || isSet)
        ::tzset();
}

seconds offsetFromUtc(sys_seconds instant) {
    const std::time_t time = instant.time_since_epoch().count();
    std::tm local{};
    ::localtime_r(&time, &local);
    return seconds{local.tm_gmtoff};
}

LocalSeconds wallTime(sys_seconds instant) {
    return LocalSeconds{(instant + offsetFromUtc(instant)).time_since_epoch()};
}

LocalSeconds wallTime(Date date) {
    followTimeZoneVariable();
    return wallTime(std::chrono::floor<seconds>(date));
}

// The clock jumps from before the wall time to after it somewhere between the two instants.
sys_seconds instantOfJumpOver(LocalSeconds skipped, sys_seconds before, sys_seconds after) {
    while (after - before > seconds{1}) {
        const sys_seconds middle = before + (after - before) / 2;
        if (wallTime(middle) < skipped)
            before = middle;
        else
            after = middle;
    }
    return after;
}

}  // namespace

void refreshLocalTimeZone() {
    ::tzset();
}

std::chrono::year_month_day localDay(Date date) {
    return std::chrono::year_month_day{std::chrono::floor<std::chrono::days>(wallTime(date))};
}

// Not mktime(): which of two midnights it takes depends on earlier calls in the process.
Date startOfLocalDay(std::chrono::year_month_day day) {
    followTimeZoneVariable();
    const sys_seconds utcMidnight = sys_days{day};
    const LocalSeconds midnight{utcMidnight.time_since_epoch()};
    const seconds offsetBefore = offsetFromUtc(utcMidnight - beyondAnyOffset);
    const seconds offsetAfter = offsetFromUtc(utcMidnight + beyondAnyOffset);
    const sys_seconds byOffsetBefore = utcMidnight - offsetBefore;
    const sys_seconds byOffsetAfter = utcMidnight - offsetAfter;
    if (offsetBefore == offsetAfter)
        return byOffsetBefore;

    const auto [earlier, later] = std::minmax(byOffsetBefore, byOffsetAfter);
    if (wallTime(later) == midnight)
        return later;
    if (wallTime(earlier) == midnight)
        return earlier;
    return instantOfJumpOver(midnight, earlier, later);
}

int localWeekday(Date date) {
    const auto day = std::chrono::floor<std::chrono::days>(wallTime(date));
    return static_cast<int>(std::chrono::weekday{day}.c_encoding()) + 1;
}

std::string formatLocalDate(Date date, DateFormat format) {
    const std::chrono::year_month_day day = localDay(date);
    const int year = static_cast<int>(day.year());
    const unsigned month = static_cast<unsigned>(day.month());
    switch (format) {
        case DateFormat::Year:
            return fmt::format("{:04}", year);
        case DateFormat::YearMonth:
            return fmt::format("{:04}{:02}", year, month);
        case DateFormat::YearMonthDay:
            break;
    }
    return fmt::format("{:04}{:02}{:02}", year, month, static_cast<unsigned>(day.day()));
}

std::string describeDate(Date date) {
    const auto whole = std::chrono::floor<seconds>(date);
    const auto midnight = std::chrono::floor<std::chrono::days>(whole);
    const std::chrono::year_month_day day{midnight};
    const std::chrono::hh_mm_ss time{whole - midnight};
    return fmt::format("{:04}-{:02}-{:02} {:02}:{:02}:{:02} +0000", static_cast<int>(day.year()),
                       static_cast<unsigned>(day.month()), static_cast<unsigned>(day.day()),
                       time.hours().count(), time.minutes().count(), time.seconds().count());
}

}  // namespace corvane
