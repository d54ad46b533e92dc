#include "engine/report_calendar.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "platform/memory/in_memory_log.h"
#include "platform_calendar/reference_zone.h"

namespace corvane {
namespace {

using std::chrono::day;
using std::chrono::hours;
using std::chrono::minutes;
using std::chrono::month;
using std::chrono::sys_days;
using std::chrono::year;
using test::dayNumber;
using test::ReferenceZone;
using test::ScopedTimeZone;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

using Cache = std::optional<std::vector<std::string>>;

constexpr std::int64_t secondsPerDay = 86400;

Date utc(int y, unsigned m, unsigned d, int h = 0, int min = 0) {
    return sys_days{year{y} / month{m} / day{d}} + hours{h} + minutes{min};
}

std::vector<Date> dueDates(SaleDataReportType type, Date now, const Cache& cache = std::nullopt) {
    return dueReportDates(type, now, cache);
}

std::vector<std::string> keys(SaleDataReportType type, Date now, const Cache& cache = std::nullopt) {
    std::vector<std::string> texts;
    for (const Date date : dueDates(type, now, cache))
        texts.push_back(reportKey(date, type));
    return texts;
}

std::vector<std::string> days(SaleDataReportType type, Date now, const Cache& cache = std::nullopt) {
    std::vector<std::string> texts;
    for (const Date date : dueDates(type, now, cache))
        texts.push_back(formatLocalDate(date, DateFormat::YearMonthDay));
    return texts;
}

TEST(ReportCalendar, GivesEachTypeItsLetterAndKeyFormat) {
    struct Row {
        SaleDataReportType type;
        int value;
        char letter;
        const char* key;
    };
    const ScopedTimeZone zone("UTC");
    const Row rows[] = {
        {SaleDataReportType::Daily, 0, 'D', "20150104"},
        {SaleDataReportType::Weekly, 1, 'W', "20150104"},
        {SaleDataReportType::Monthly, 2, 'M', "201501"},
        {SaleDataReportType::Year, 3, 'Y', "2015"},
    };
    std::size_t i = 0;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.letter);
        EXPECT_EQ(static_cast<int>(row.type), row.value);
        EXPECT_EQ(allReportTypes[i++], row.type);
        EXPECT_EQ(reportTypeLetter(row.type), row.letter);
        EXPECT_EQ(reportKey(utc(2015, 1, 4, 12), row.type), row.key);
    }
    EXPECT_EQ(static_cast<int>(ReportType::Yearly), static_cast<int>(SaleDataReportType::Year));
}

TEST(ReportCalendar, NamesReportFiles) {
    EXPECT_EQ(reportFileName("20150104", SaleDataReportType::Daily, "80012345"), "S_D_80012345_20150104.txt");
    EXPECT_EQ(reportFileName("20150104", SaleDataReportType::Weekly, "80012345"),
              "S_W_80012345_20150104.txt");
    EXPECT_EQ(reportFileName("201501", SaleDataReportType::Monthly, "80012345"), "S_M_80012345_201501.txt");
    EXPECT_EQ(reportFileName("2015", SaleDataReportType::Year, ""), "S_Y__2015.txt");
}

TEST(ReportCalendar, PutsDatesBackToLocalMidnight) {
    const ScopedTimeZone zone("Europe/Berlin");
    EXPECT_EQ(dateWithoutTime(utc(2015, 1, 4, 22, 59)), utc(2015, 1, 3, 23));
    EXPECT_EQ(dateWithoutTime(utc(2015, 1, 4, 23)), utc(2015, 1, 4, 23));
}

TEST(ReportCalendar, ListsAllDatesWithoutACache) {
    const ScopedTimeZone zone("UTC");
    const Date now = utc(2015, 1, 7, 15, 30);
    const std::vector<std::string> daily = days(SaleDataReportType::Daily, now);
    ASSERT_EQ(daily.size(), 366U);
    EXPECT_EQ(daily.front(), "20140107");
    EXPECT_EQ(daily.back(), "20150107");

    const std::vector<std::string> weekly = days(SaleDataReportType::Weekly, now);
    ASSERT_EQ(weekly.size(), 56U);
    EXPECT_EQ(weekly.front(), "20131215");
    EXPECT_EQ(weekly.back(), "20150104");

    EXPECT_THAT(
        days(SaleDataReportType::Monthly, now),
        ElementsAre("20140107", "20140204", "20140304", "20140401", "20140429", "20140527", "20140624",
                    "20140722", "20140819", "20140916", "20141014", "20141111", "20141209", "20150106"));
    EXPECT_THAT(days(SaleDataReportType::Year, now),
                ElementsAre("20050109", "20060109", "20070109", "20080109", "20090108", "20100108",
                            "20110108", "20120108", "20130107", "20140107", "20150107"));
}

TEST(ReportCalendar, ListsAscendingMidnights) {
    const ScopedTimeZone zone("America/New_York");
    for (const SaleDataReportType type : allReportTypes) {
        const std::vector<Date> dates = dueDates(type, utc(2015, 6, 10, 15));
        EXPECT_TRUE(std::is_sorted(dates.begin(), dates.end()));
        for (const Date date : dates)
            EXPECT_EQ(dateWithoutTime(date), date) << describeDate(date);
    }
}

TEST(ReportCalendar, KeepsAMonthOrAYearThatComesTwice) {
    const ScopedTimeZone zone("UTC");
    // 28-day steps through April 2014 meet its 1st and its 29th day.
    EXPECT_THAT(keys(SaleDataReportType::Monthly, utc(2015, 1, 7, 15)),
                ElementsAre("201401", "201402", "201403", "201404", "201404", "201405", "201406", "201407",
                            "201408", "201409", "201410", "201411", "201412", "201501"));
    // 365-day steps over leap years: back from 31 December 2016, one falls on 1 January 2013.
    EXPECT_THAT(
        keys(SaleDataReportType::Year, utc(2016, 12, 31, 12)),
        ElementsAre("2007", "2008", "2009", "2010", "2011", "2012", "2013", "2014", "2015", "2016", "2016"));
}

TEST(ReportCalendar, EndsWeeksOnSunday) {
    struct Row {
        const char* what;
        Date now;
        const char* lastWeek;
        const char* logged;
    };
    const ScopedTimeZone zone("Europe/Berlin");
    const Row rows[] = {
        {"Saturday night", utc(2015, 1, 3, 22, 59), "20141228", "last monday:2014-12-28 22:59:00 +0000"},
        {"Sunday's first minute", utc(2015, 1, 3, 23), "20150104", "last monday:2015-01-03 23:00:00 +0000"},
        {"Sunday night", utc(2015, 1, 4, 22, 59), "20150104", "last monday:2015-01-04 22:59:00 +0000"},
        {"Monday", utc(2015, 1, 5, 10), "20150104", "last monday:2015-01-04 10:00:00 +0000"},
        {"Tuesday", utc(2015, 1, 6, 10), "20150104", "last monday:2015-01-04 10:00:00 +0000"},
        {"Friday", utc(2015, 1, 9, 10), "20150104", "last monday:2015-01-04 10:00:00 +0000"},
        {"Saturday", utc(2015, 1, 10, 10), "20150104", "last monday:2015-01-04 10:00:00 +0000"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        InMemoryLog log;
        logBaseDate(SaleDataReportType::Weekly, row.now, log);
        const std::vector<Date> dates = dueDates(SaleDataReportType::Weekly, row.now);
        ASSERT_EQ(dates.size(), 56U);
        EXPECT_EQ(formatLocalDate(dates.back(), DateFormat::YearMonthDay), row.lastWeek);
        EXPECT_THAT(log.lines(), ElementsAre(row.logged));
    }
}

TEST(ReportCalendar, HasNothingDueWhenTheCacheHasAll) {
    const ScopedTimeZone zone("UTC");
    const Date now = utc(2015, 1, 7, 15);
    for (const SaleDataReportType type : allReportTypes)
        EXPECT_THAT(dueDates(type, now, keys(type, now)), IsEmpty());
}

TEST(ReportCalendar, LogsTheSundayForWeeksOnly) {
    const ScopedTimeZone zone("UTC");
    const Date now = utc(2015, 1, 7, 15);
    InMemoryLog log;
    for (const SaleDataReportType type : allReportTypes)
        logBaseDate(type, now, log);
    EXPECT_THAT(log.lines(), ElementsAre("last monday:2015-01-04 15:00:00 +0000"));
}

TEST(ReportCalendar, LeavesOutWhatTheCacheHolds) {
    const ScopedTimeZone zone("UTC");
    const Date now = utc(2015, 1, 30, 15);

    const Cache month = {{"201501"}};
    EXPECT_THAT(keys(SaleDataReportType::Monthly, now), Contains("201501"));
    EXPECT_THAT(keys(SaleDataReportType::Monthly, now, month), Not(Contains("201501")));
    EXPECT_EQ(days(SaleDataReportType::Daily, now, month), days(SaleDataReportType::Daily, now));
    EXPECT_EQ(days(SaleDataReportType::Year, now, month), days(SaleDataReportType::Year, now));

    const Cache sunday = {{"20150104"}};
    for (const SaleDataReportType type : {SaleDataReportType::Daily, SaleDataReportType::Weekly}) {
        EXPECT_THAT(days(type, now), Contains("20150104"));
        EXPECT_THAT(days(type, now, sunday), Not(Contains("20150104")));
        EXPECT_EQ(days(type, now, sunday).size() + 1, days(type, now).size());
    }
    EXPECT_EQ(days(SaleDataReportType::Monthly, now, sunday).size(), 14U);
}

TEST(ReportCalendar, DropsBothDatesOfAMonthThatComesTwice) {
    const ScopedTimeZone zone("UTC");
    EXPECT_EQ(keys(SaleDataReportType::Monthly, utc(2015, 1, 7), Cache{{"201404"}}).size(), 12U);
}

TEST(ReportCalendar, TakesOddCachesAsTheyAre) {
    const ScopedTimeZone zone("UTC");
    const Date now = utc(2015, 1, 7);
    EXPECT_EQ(days(SaleDataReportType::Daily, now, Cache{std::vector<std::string>{}}).size(), 366U);
    EXPECT_EQ(
        days(SaleDataReportType::Daily, now, Cache{{"", "2015010", "201501040", "x", "19990101"}}).size(),
        366U);
    EXPECT_EQ(days(SaleDataReportType::Daily, now, Cache{{"20150104", "20150104"}}).size(), 365U);
}

TEST(ReportCalendar, LosesADayToClockChangesAsTheSecondsHaveIt) {
    struct Row {
        const char* what;
        const char* zone;
        Date now;
        std::size_t count;
        const char* first;
        const char* last;
        const char* missing;
        const char* listed;
    };
    const Row rows[] = {
        // From autumn to spring the running date is 23:00, so autumn repeats a day and spring leaves one out.
        {"autumn, then spring", "Europe/Berlin", utc(2015, 10, 24, 12), 365, "20141024", "20151024",
         "20150329", "20141026"},
        // The second autumn takes today away.
        {"two autumns", "Europe/Berlin", utc(2015, 10, 26, 12), 364, "20141026", "20151025", "20151026",
         "20150328"},
        // Soon after a summer midnight, 365 days back are an hour before one in winter.
        {"start an hour early", "Europe/Berlin", utc(2015, 3, 29, 22, 30), 366, "20140329", "20150329",
         "20150330", "20141026"},
        {"midnight left out, come upon at 23:00", "America/Sao_Paulo", utc(2018, 12, 1, 15), 365, "20171201",
         "20181201", "20181104", "20181103"},
        {"midnight left out, come upon at 01:00", "America/Sao_Paulo", utc(2019, 3, 1, 15), 366, "20180301",
         "20190301", "20180228", "20181104"},
        {"a day that never was", "Pacific/Apia", utc(2012, 6, 1), 366, "20110601", "20120601", "20111230",
         "20111231"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        const ScopedTimeZone zone(row.zone);
        const std::vector<std::string> listed = days(SaleDataReportType::Daily, row.now);
        EXPECT_EQ(listed.size(), row.count);
        EXPECT_EQ(listed.front(), row.first);
        EXPECT_EQ(listed.back(), row.last);
        EXPECT_THAT(listed, Not(Contains(row.missing)));
        EXPECT_THAT(listed, Contains(row.listed));
        EXPECT_EQ(std::set<std::string>(listed.begin(), listed.end()).size(), listed.size());
    }
}

// The same rule on plain integers and the zone file.
std::vector<std::int64_t> referenceDates(const ReferenceZone& zone, SaleDataReportType type,
                                         std::int64_t now) {
    static constexpr std::int64_t spans[] = {365, 385, 365, 3650};
    static constexpr std::int64_t steps[] = {1, 7, 28, 365};
    const auto index = static_cast<std::size_t>(type);
    std::int64_t base = now;
    if (type == SaleDataReportType::Weekly)
        base -= (zone.dayOf(now) + 4) % 7 * secondsPerDay;  // 1970-01-01 was a Thursday
    std::set<std::int64_t> dates;
    std::int64_t running = zone.dateWithoutTime(base - spans[index] * secondsPerDay);
    for (std::int64_t walked = 0; walked <= spans[index]; walked += steps[index]) {
        dates.insert(zone.dateWithoutTime(running));
        running += steps[index] * secondsPerDay;
    }
    return {dates.begin(), dates.end()};
}

void expectSameDates(const ReferenceZone& zone, std::int64_t now) {
    for (const SaleDataReportType type : allReportTypes) {
        const Date date{std::chrono::seconds{now}};
        std::vector<std::int64_t> listed;
        for (const Date due : dueDates(type, date))
            listed.push_back(due.time_since_epoch() / std::chrono::seconds{1});
        ASSERT_EQ(listed, referenceDates(zone, type, now))
            << describeDate(date) << " type " << reportTypeLetter(type);
    }
}

TEST(ReportCalendar, AgreesWithTheReferenceOnEveryDayOfManyYears) {
    for (const char* name : {"UTC", "Europe/Berlin"}) {
        SCOPED_TRACE(name);
        const ReferenceZone reference(name);
        const ScopedTimeZone zone(name);
        const std::int64_t last = dayNumber(2018, 3, 5);
        // At another time of the day each day.
        for (std::int64_t number = dayNumber(2015, 12, 25); number < last; ++number)
            ASSERT_NO_FATAL_FAILURE(
                expectSameDates(reference, number * secondsPerDay + number * 3631 % secondsPerDay));
    }
}

TEST(ReportCalendar, AgreesWithTheReferenceAroundEveryClockChangeAndYearEndOfManyZones) {
    for (const char* name :
         {"Europe/Berlin", "America/New_York", "America/Los_Angeles", "America/Sao_Paulo", "Asia/Beirut",
          "America/Havana", "Africa/Cairo", "Pacific/Apia", "Australia/Lord_Howe", "Asia/Kathmandu", "UTC"}) {
        SCOPED_TRACE(name);
        const ReferenceZone reference(name);
        const ScopedTimeZone zone(name);
        const std::int64_t first = dayNumber(2010, 1, 1) * secondsPerDay;
        const std::int64_t last = dayNumber(2024, 12, 31) * secondsPerDay;
        for (const std::int64_t change : reference.changesBetween(first, last)) {
            // On its days, and a year after it, when the walk starts there.
            for (const std::int64_t now : {change, change + 365 * secondsPerDay}) {
                for (const std::int64_t shift : {-1, 0, 84600})
                    ASSERT_NO_FATAL_FAILURE(expectSameDates(reference, now + shift));
            }
        }
        for (int y = 2010; y <= 2024; ++y) {
            for (const std::int64_t now :
                 {reference.startOfDay(dayNumber(y, 1, 1)), reference.startOfDay(dayNumber(y, 3, 1))}) {
                ASSERT_NO_FATAL_FAILURE(expectSameDates(reference, now));
                ASSERT_NO_FATAL_FAILURE(expectSameDates(reference, now - 1));
            }
        }
    }
}

TEST(ReportCalendar, IsTheSameOnAllThreads) {
    const ScopedTimeZone zone("America/Havana");
    const Date now = utc(2019, 6, 1, 12);
    const std::vector<Date> expected = dueDates(SaleDataReportType::Daily, now);
    std::vector<std::vector<Date>> found(4);
    std::vector<std::thread> threads;
    threads.reserve(found.size());
    for (std::vector<Date>& dates : found)
        threads.emplace_back([&dates, now] { dates = dueDates(SaleDataReportType::Daily, now); });
    for (std::thread& thread : threads)
        thread.join();
    for (const std::vector<Date>& dates : found)
        EXPECT_EQ(dates, expected);
}

}  // namespace
}  // namespace corvane
