#include "engine/report_calendar.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <unordered_set>

#include "platform/text_format.h"

namespace corvane {

namespace {

constexpr std::string_view letterPool = "YMWD";  // the types from last to first

struct Reach {
    int span;  // days back from the base date
    int step;  // days from one report date to the next
};
constexpr Reach reaches[] = {{365, 1}, {385, 7}, {365, 28}, {3650, 365}};

// A day of the walk is always this long. Across a clock change it therefore leaves midnight, and only each
// date found is brought back to it.
constexpr std::chrono::seconds dayLength{86400};

constexpr std::size_t indexOf(SaleDataReportType type) {
    return static_cast<std::size_t>(type);
}

Date baseDate(SaleDataReportType type, Date now) {
    if (type != SaleDataReportType::Weekly)
        return now;
    return now - (localWeekday(now) - 1) * dayLength;
}

std::vector<Date> allReportDates(SaleDataReportType type, Date base) {
    const Reach reach = reaches[indexOf(type)];
    std::vector<Date> dates;
    dates.reserve(static_cast<std::size_t>(reach.span / reach.step) + 1);
    Date running = dateWithoutTime(base - reach.span * dayLength);
    for (int daysWalked = 0; daysWalked <= reach.span; daysWalked += reach.step) {
        dates.push_back(dateWithoutTime(running));
        running += reach.step * dayLength;
    }
    std::sort(dates.begin(), dates.end());
    // A clock change can lead the walk to the same day twice.
    dates.erase(std::unique(dates.begin(), dates.end()), dates.end());
    return dates;
}

}  // namespace

char reportTypeLetter(SaleDataReportType type) {
    return letterPool[letterPool.size() - 1 - indexOf(type)];
}

DateFormat reportKeyFormat(SaleDataReportType type) {
    switch (type) {
        case SaleDataReportType::Monthly:
            return DateFormat::YearMonth;
        case SaleDataReportType::Year:
            return DateFormat::Year;
        case SaleDataReportType::Daily:
        case SaleDataReportType::Weekly:
            break;
    }
    return DateFormat::YearMonthDay;
}

std::string reportKey(Date reportDate, SaleDataReportType type) {
    return formatLocalDate(reportDate, reportKeyFormat(type));
}

std::string reportFileName(std::string_view dateText, SaleDataReportType type, std::string_view vendorID) {
    std::string name = "S_";
    name += reportTypeLetter(type);
    name += '_';
    name += vendorID;
    name += '_';
    name += dateText;
    name += ".txt";
    return name;
}

Date dateWithoutTime(Date date) {
    return startOfLocalDay(localDay(date));
}

void logBaseDate(SaleDataReportType type, Date now, Log& log) {
    // The label stays as it is: whoever reads these logs searches for it.
    if (type == SaleDataReportType::Weekly)
        log.log(formatText("last monday:%@", {describeDate(baseDate(type, now))}));
}

std::vector<Date> dueReportDates(SaleDataReportType type, Date now,
                                 const std::optional<std::vector<std::string>>& cache) {
    refreshLocalTimeZone();
    std::vector<Date> dates = allReportDates(type, baseDate(type, now));
    if (!cache)
        return dates;
    const std::unordered_set<std::string_view> fetchedKeys(cache->begin(), cache->end());
    std::erase_if(dates, [&](Date date) { return fetchedKeys.contains(reportKey(date, type)); });
    return dates;
}

}  // namespace corvane
