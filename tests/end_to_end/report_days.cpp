#include "end_to_end/report_days.h"

#include <fmt/format.h>

#include <algorithm>

namespace corvane::test {

using std::chrono::days;
using std::chrono::sys_days;
using std::chrono::year_month_day;

std::vector<sys_days> firstImportDays(demo::ReportDateType type, sys_days today) {
    struct Walk {
        sys_days first;
        int step;
        int count;
    };
    const days sinceSunday(std::chrono::weekday(today).c_encoding());
    const Walk walk = [&]() -> Walk {
        switch (type) {
            case demo::ReportDateType::Daily:
                return {today - days(365), 1, 366};
            case demo::ReportDateType::Weekly:
                return {today - sinceSunday - days(385), 7, 56};
            case demo::ReportDateType::Monthly:
                return {today - days(365), 28, 14};
            case demo::ReportDateType::Yearly:
                break;
        }
        return {today - days(3650), 365, 11};
    }();
    std::vector<sys_days> result;
    for (int i = 0; i < walk.count; ++i)
        result.push_back(walk.first + days(i * walk.step));
    return result;
}

sys_days todayInUtc() {
    return std::chrono::floor<days>(std::chrono::system_clock::now());
}

std::string keyOf(demo::ReportDateType type, sys_days day) {
    const year_month_day date(day);
    const std::string text =
        fmt::format("{:04}{:02}{:02}", static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                    static_cast<unsigned>(date.day()));
    switch (type) {
        case demo::ReportDateType::Monthly:
            return text.substr(0, 6);
        case demo::ReportDateType::Yearly:
            return text.substr(0, 4);
        default:
            return text;
    }
}

std::vector<std::string> fullCache() {
    std::vector<std::string> keys;
    for (const auto type : {demo::ReportDateType::Daily, demo::ReportDateType::Weekly,
                            demo::ReportDateType::Monthly, demo::ReportDateType::Yearly}) {
        for (const sys_days today : {todayInUtc(), todayInUtc() + days(1)}) {
            for (const sys_days day : firstImportDays(type, today)) {
                const std::string key = keyOf(type, day);
                if (std::ranges::find(keys, key) == keys.end())
                    keys.push_back(key);
            }
        }
    }
    return keys;
}

std::vector<std::string> fullCacheWithout(const std::vector<sys_days>& missing) {
    std::vector<std::string> keys = fullCache();
    for (const sys_days day : missing)
        std::erase(keys, keyOf(demo::ReportDateType::Daily, day));
    return keys;
}

std::vector<sys_days> recentWorkdays(std::size_t count) {
    std::vector<sys_days> result;
    for (sys_days day = todayInUtc() - days(1); result.size() < count; day -= days(1)) {
        if (std::chrono::weekday(day) != std::chrono::Sunday)
            result.push_back(day);
    }
    std::ranges::reverse(result);
    return result;
}

}  // namespace corvane::test
