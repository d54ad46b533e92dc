#include "platform/local_calendar.h"

#include <gtest/gtest.h>

#include <ctime>
#include <string>

#include "platform_calendar/reference_zone.h"

namespace corvane {
namespace {

using namespace std::chrono_literals;
using std::chrono::day;
using std::chrono::month;
using std::chrono::sys_days;
using std::chrono::year;
using std::chrono::year_month_day;
using test::dayNumber;
using test::dayText;
using test::ReferenceZone;
using test::ScopedTimeZone;

constexpr std::int64_t secondsPerDay = 86400;

Date utc(int y, unsigned m, unsigned d, int h = 0, int min = 0, int s = 0) {
    return sys_days{year{y} / month{m} / day{d}} + std::chrono::hours{h} + std::chrono::minutes{min} +
           std::chrono::seconds{s};
}

Date instant(std::int64_t seconds) {
    return Date{std::chrono::seconds{seconds}};
}

std::int64_t secondsOf(Date date) {
    return std::chrono::duration_cast<std::chrono::seconds>(date.time_since_epoch()).count();
}

year_month_day dayOfNumber(std::int64_t number) {
    return sys_days{std::chrono::days{number}};
}

struct StartOfDayCase {
    const char* what;
    const char* zone;
    year_month_day day;
    Date start;
};

TEST(LocalCalendar, FindsTheStartOfUnusualDays) {
    const StartOfDayCase cases[] = {
        {"plain day", "UTC", 2015y / 1 / 4, utc(2015, 1, 4)},
        {"plain day east", "Europe/Berlin", 2015y / 1 / 4, utc(2015, 1, 3, 23)},
        {"plain day west", "America/New_York", 2015y / 1 / 4, utc(2015, 1, 4, 5)},
        {"quarter-hour offset", "Asia/Kathmandu", 2020y / 6 / 1, utc(2020, 5, 31, 18, 15)},
        {"change at night", "Europe/Berlin", 2015y / 3 / 29, utc(2015, 3, 28, 23)},
        {"day after the change", "Europe/Berlin", 2015y / 3 / 30, utc(2015, 3, 29, 22)},
        {"change by half an hour", "Australia/Lord_Howe", 2019y / 4 / 7, utc(2019, 4, 6, 13)},
        {"day after it", "Australia/Lord_Howe", 2019y / 4 / 8, utc(2019, 4, 7, 13, 30)},
        {"no midnight, Sao Paulo", "America/Sao_Paulo", 2018y / 11 / 4, utc(2018, 11, 4, 3)},
        {"no midnight, Beirut", "Asia/Beirut", 2019y / 3 / 31, utc(2019, 3, 30, 22)},
        {"no midnight, Havana", "America/Havana", 2019y / 3 / 10, utc(2019, 3, 10, 5)},
        {"no midnight, Cairo", "Africa/Cairo", 2023y / 4 / 28, utc(2023, 4, 27, 22)},
        {"no midnight, clocks before it, Toronto", "America/Toronto", 1919y / 3 / 31,
         utc(1919, 3, 31, 4, 30)},
        {"two midnights, Havana", "America/Havana", 2018y / 11 / 4, utc(2018, 11, 4, 5)},
        {"an hour of the day before twice", "America/Sao_Paulo", 2019y / 2 / 16, utc(2019, 2, 16, 2)},
        {"and the day after it", "America/Sao_Paulo", 2019y / 2 / 17, utc(2019, 2, 17, 3)},
        {"day that never was, Apia", "Pacific/Apia", 2011y / 12 / 30, utc(2011, 12, 30, 10)},
        {"the day after it", "Pacific/Apia", 2011y / 12 / 31, utc(2011, 12, 30, 10)},
        {"the day before it", "Pacific/Apia", 2011y / 12 / 29, utc(2011, 12, 29, 10)},
        {"leap day", "Europe/Berlin", 2016y / 2 / 29, utc(2016, 2, 28, 23)},
        {"before 1970", "America/New_York", 1969y / 12 / 31, utc(1969, 12, 31, 5)},
    };
    for (const StartOfDayCase& test : cases) {
        SCOPED_TRACE(test.what);
        const ScopedTimeZone zone(test.zone);
        EXPECT_EQ(describeDate(startOfLocalDay(test.day)), describeDate(test.start));
    }
}

TEST(LocalCalendar, TakesTheLaterMidnightWhateverWasAskedBefore) {
    const ScopedTimeZone zone("America/Havana");
    const Date expected = utc(2018, 11, 4, 5);
    for (const Date before : {utc(2018, 7, 1), utc(2018, 12, 1), utc(2018, 11, 4, 4, 30)}) {
        std::tm wall{};
        const std::time_t time = std::chrono::system_clock::to_time_t(before);
        ::localtime_r(&time, &wall);
        ::mktime(&wall);
        startOfLocalDay(localDay(before));
        EXPECT_EQ(startOfLocalDay(2018y / 11 / 4), expected) << describeDate(before);
    }
}

TEST(LocalCalendar, FollowsTheZoneVariableFromCallToCall) {
    const Date instant = utc(2015, 1, 4, 23, 30);
    for (int round = 0; round < 2; ++round) {
        {
            const ScopedTimeZone zone("Europe/Berlin");
            EXPECT_EQ(localDay(instant), 2015y / 1 / 5);
            EXPECT_EQ(startOfLocalDay(2015y / 1 / 5), utc(2015, 1, 4, 23));
        }
        {
            const ScopedTimeZone zone("America/Los_Angeles");
            EXPECT_EQ(startOfLocalDay(2015y / 1 / 5), utc(2015, 1, 5, 8));
            EXPECT_EQ(localWeekday(instant), 1);
        }
    }
}

TEST(LocalCalendar, ReturnsToTheSystemsZoneWhenTheVariableGoes) {
    const Date instant = utc(2015, 7, 4, 12);
    const ScopedTimeZone restorer("UTC");
    ::unsetenv("TZ");
    refreshLocalTimeZone();
    const Date expected = startOfLocalDay(localDay(instant));
    ::setenv("TZ", "Pacific/Kiritimati", 1);
    EXPECT_EQ(startOfLocalDay(2015y / 7 / 4), utc(2015, 7, 3, 10));
    ::unsetenv("TZ");
    EXPECT_EQ(startOfLocalDay(localDay(instant)), expected);
}

TEST(LocalCalendar, ChangesTheDayAtLocalMidnightExactly) {
    const ScopedTimeZone zone("Europe/Berlin");
    EXPECT_EQ(localDay(utc(2015, 12, 31, 22, 59, 59) + 999ms), 2015y / 12 / 31);
    EXPECT_EQ(localDay(utc(2015, 12, 31, 23)), 2016y / 1 / 1);
    EXPECT_EQ(localDay(utc(1969, 12, 31, 22, 59, 59) + 1ms), 1969y / 12 / 31);
}

TEST(LocalCalendar, CountsWeekdaysFromSunday) {
    const ScopedTimeZone zone("Asia/Kathmandu");
    for (int i = 0; i < 7; ++i)
        EXPECT_EQ(localWeekday(utc(2015, 1, 4 + static_cast<unsigned>(i), 12)), i + 1);
    EXPECT_EQ(localWeekday(utc(2015, 1, 3, 18, 14, 59)), 7);
    EXPECT_EQ(localWeekday(utc(2015, 1, 3, 18, 15)), 1);
    EXPECT_EQ(localWeekday(utc(1969, 12, 31, 12)), 4);
}

TEST(LocalCalendar, WritesDatesWithAllTheirDigits) {
    const ScopedTimeZone zone("UTC");
    const Date date = utc(2015, 1, 4, 23, 59, 59);
    EXPECT_EQ(formatLocalDate(date, DateFormat::YearMonthDay), "20150104");
    EXPECT_EQ(formatLocalDate(date, DateFormat::YearMonth), "201501");
    EXPECT_EQ(formatLocalDate(date, DateFormat::Year), "2015");
    EXPECT_EQ(formatLocalDate(utc(2016, 2, 29), DateFormat::YearMonthDay), "20160229");
    EXPECT_EQ(formatLocalDate(utc(2016, 12, 31, 23, 59), DateFormat::Year), "2016");
}

TEST(LocalCalendar, WritesDatesOfTheLocalDay) {
    const Date date = utc(2015, 12, 31, 23, 30);
    {
        const ScopedTimeZone zone("Europe/Berlin");
        EXPECT_EQ(formatLocalDate(date, DateFormat::YearMonthDay), "20160101");
        EXPECT_EQ(formatLocalDate(date, DateFormat::YearMonth), "201601");
        EXPECT_EQ(formatLocalDate(date, DateFormat::Year), "2016");
    }
    const ScopedTimeZone zone("America/Los_Angeles");
    EXPECT_EQ(formatLocalDate(date, DateFormat::YearMonthDay), "20151231");
}

TEST(LocalCalendar, DescribesInstantsInUtc) {
    const ScopedTimeZone zone("Asia/Kathmandu");
    EXPECT_EQ(describeDate(utc(2015, 1, 4, 12, 34, 56) + 999ms), "2015-01-04 12:34:56 +0000");
    EXPECT_EQ(describeDate(utc(1969, 12, 31, 23, 59, 59) + 1ms), "1969-12-31 23:59:59 +0000");
}

// Every day around every clock change that the zone lists in these years, and each midnight of it.
void expectDaysAroundChangesToMatch(const std::string& name) {
    SCOPED_TRACE(name);
    const ReferenceZone reference(name);
    const ScopedTimeZone zone(name);
    const std::int64_t first = dayNumber(1975, 1, 1) * secondsPerDay;
    const std::int64_t last = dayNumber(2036, 12, 31) * secondsPerDay;
    for (const std::int64_t change : reference.changesBetween(first, last)) {
        const std::int64_t changeDay = reference.dayOf(change);
        for (std::int64_t number = changeDay - 2; number <= changeDay + 2; ++number) {
            ASSERT_EQ(secondsOf(startOfLocalDay(dayOfNumber(number))), reference.startOfDay(number))
                << dayText(number, 8);
        }
        for (const std::int64_t shift : {-86400, -3601, -3600, -1800, -1, 0, 1, 1800, 3599, 3600, 86400}) {
            const std::int64_t time = change + shift;
            ASSERT_EQ(formatLocalDate(instant(time), DateFormat::YearMonthDay),
                      dayText(reference.dayOf(time), 8))
                << describeDate(instant(time));
        }
    }
}

TEST(LocalCalendar, AgreesWithTheZoneFilesAroundEveryClockChange) {
    for (const char* name : {"UTC",
                             "Europe/Berlin",
                             "America/New_York",
                             "America/Los_Angeles",
                             "America/Sao_Paulo",
                             "Asia/Beirut",
                             "America/Havana",
                             "Africa/Cairo",
                             "Pacific/Apia",
                             "Australia/Lord_Howe",
                             "Asia/Kathmandu",
                             "Africa/Casablanca",
                             "America/Caracas",
                             "America/Godthab",
                             "America/St_Johns",
                             "Antarctica/Troll",
                             "Asia/Gaza",
                             "Asia/Pyongyang",
                             "Asia/Tehran",
                             "Atlantic/Azores",
                             "Europe/Dublin",
                             "Europe/Lisbon",
                             "Pacific/Chatham",
                             "Pacific/Kwajalein",
                             "Pacific/Kiritimati"})
        expectDaysAroundChangesToMatch(name);
}

TEST(LocalCalendar, AgreesWithTheZoneFilesOnEveryDayOfManyYears) {
    for (const char* name : {"UTC", "Europe/Berlin", "America/Havana", "Pacific/Apia"}) {
        SCOPED_TRACE(name);
        const ReferenceZone reference(name);
        const ScopedTimeZone zone(name);
        const std::int64_t last = dayNumber(2025, 1, 1);
        for (std::int64_t number = dayNumber(2008, 1, 1); number < last; ++number) {
            ASSERT_EQ(secondsOf(startOfLocalDay(dayOfNumber(number))), reference.startOfDay(number))
                << dayText(number, 8);
        }
    }
}

}  // namespace
}  // namespace corvane
