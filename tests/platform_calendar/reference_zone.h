#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace corvane::test {

/// A time zone read straight from the system's TZif file (RFC 8536), to hold the product's calendar against:
/// plain arithmetic on seconds since 1970, no call of the C library's time functions. Good for instants up to
/// the file's last listed change, which is 2037 on Debian, and for zones whose changes have ended.
class ReferenceZone {
  public:
    /// `name` as under /usr/share/zoneinfo. Throws std::runtime_error for a file that cannot be used.
    explicit ReferenceZone(const std::string& name);

    /// Seconds east of UTC.
    std::int64_t offsetAt(std::int64_t instant) const;

    /// The local day, counted from 1970-01-01.
    std::int64_t dayOf(std::int64_t instant) const;

    /// The first instant of the day: the last of its midnights, else the first instant with a later wall
    /// time.
    std::int64_t startOfDay(std::int64_t day) const;

    std::int64_t dateWithoutTime(std::int64_t instant) const { return startOfDay(dayOf(instant)); }

    /// The instants from `first` to `last` at which the offset changes.
    std::vector<std::int64_t> changesBetween(std::int64_t first, std::int64_t last) const;

  private:
    struct Span {
        std::int64_t first;  ///< the first instant with this offset
        std::int64_t offset;
    };
    std::size_t spanAt(std::int64_t instant) const;

    std::vector<Span> spans_;  ///< ascending, the first from the beginning of time on
};

/// Days from 1970-01-01 to the date of the Gregorian calendar.
std::int64_t dayNumber(int year, int month, int day);

/// "yyyyMMdd", "yyyyMM" or "yyyy" of a day number, by `length` 8, 6 or 4.
std::string dayText(std::int64_t day, std::size_t length);

/// Sets TZ for as long as it lives, then puts the old value back. One thread only.
class ScopedTimeZone {
  public:
    explicit ScopedTimeZone(const std::string& name);
    ~ScopedTimeZone();
    ScopedTimeZone(const ScopedTimeZone&) = delete;
    ScopedTimeZone& operator=(const ScopedTimeZone&) = delete;

  private:
    bool wasSet_;
    std::string previous_;
};

}  // namespace corvane::test
