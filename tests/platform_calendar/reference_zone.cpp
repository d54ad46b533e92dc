#include "platform_calendar/reference_zone.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <limits>
#include <stdexcept>

namespace corvane::test {

namespace {

constexpr std::int64_t secondsPerDay = 86400;

std::int64_t floorDivide(std::int64_t dividend, std::int64_t divisor) {
    const std::int64_t quotient = dividend / divisor;
    return dividend % divisor < 0 ? quotient - 1 : quotient;
}

// Walks through the file's big-endian numbers.
class Reader {
  public:
    explicit Reader(const std::string& path) {
        std::ifstream file(path, std::ios::binary);
        bytes_.assign(std::istreambuf_iterator<char>(file), {});
    }

    std::int64_t number(std::size_t width) {
        std::uint64_t value = (byteAt(position_) & 0x80U) != 0 ? ~std::uint64_t{0} : 0;
        for (std::size_t i = 0; i < width; ++i)
            value = value << 8U | byteAt(position_++);
        return static_cast<std::int64_t>(value);
    }

    std::size_t count() { return static_cast<std::size_t>(number(4)); }
    void skip(std::size_t length) { position_ += length; }

    void expectMagic() {
        if (bytes_.compare(position_, 4, "TZif") != 0)
            throw std::runtime_error("no time zone file");
        position_ += 20;
    }

  private:
    std::uint64_t byteAt(std::size_t position) const {
        return static_cast<unsigned char>(bytes_.at(position));
    }

    std::string bytes_;
    std::size_t position_ = 0;
};

struct Header {
    std::size_t utcFlags, standardFlags, leapSeconds, times, types, nameLength;
};

Header readHeader(Reader& reader) {
    reader.expectMagic();
    Header header{};
    header.utcFlags = reader.count();
    header.standardFlags = reader.count();
    header.leapSeconds = reader.count();
    header.times = reader.count();
    header.types = reader.count();
    header.nameLength = reader.count();
    return header;
}

}  // namespace

ReferenceZone::ReferenceZone(const std::string& name) {
    Reader reader("/usr/share/zoneinfo/" + name);
    // The first block holds 32-bit times for old readers; the second one has all.
    const Header old = readHeader(reader);
    reader.skip(old.times * 5 + old.types * 6 + old.nameLength + old.leapSeconds * 8 + old.standardFlags +
                old.utcFlags);
    const Header header = readHeader(reader);
    std::vector<std::int64_t> times(header.times);
    for (std::int64_t& time : times)
        time = reader.number(8);
    std::vector<std::size_t> types(header.times);
    for (std::size_t& type : types)
        type = static_cast<std::size_t>(reader.number(1));
    std::vector<std::int64_t> offsets(header.types);
    for (std::int64_t& offset : offsets) {
        offset = reader.number(4);
        reader.skip(2);
    }
    spans_.push_back({std::numeric_limits<std::int64_t>::min(), offsets.at(0)});
    for (std::size_t i = 0; i < times.size(); ++i)
        spans_.push_back({times[i], offsets.at(types[i])});
}

std::size_t ReferenceZone::spanAt(std::int64_t instant) const {
    const auto next = std::upper_bound(spans_.begin(), spans_.end(), instant,
                                       [](std::int64_t time, const Span& span) { return time < span.first; });
    return static_cast<std::size_t>(next - spans_.begin()) - 1;
}

std::int64_t ReferenceZone::offsetAt(std::int64_t instant) const {
    return spans_[spanAt(instant)].offset;
}

std::int64_t ReferenceZone::dayOf(std::int64_t instant) const {
    return floorDivide(instant + offsetAt(instant), secondsPerDay);
}

std::int64_t ReferenceZone::startOfDay(std::int64_t day) const {
    const std::int64_t wallMidnight = day * secondsPerDay;
    std::int64_t firstLaterWallTime = std::numeric_limits<std::int64_t>::max();
    // No zone is two days from UTC, so the spans further away cannot hold the midnight.
    const std::size_t earliest = spanAt(wallMidnight - 2 * secondsPerDay);
    for (std::size_t i = spanAt(wallMidnight + 2 * secondsPerDay) + 1; i-- > earliest;) {
        const Span& span = spans_[i];
        const std::int64_t end =
            i + 1 < spans_.size() ? spans_[i + 1].first : std::numeric_limits<std::int64_t>::max();
        const std::int64_t midnight = wallMidnight - span.offset;
        if (midnight >= span.first && midnight < end)
            return midnight;
        if (midnight < span.first)
            firstLaterWallTime = span.first;
    }
    return firstLaterWallTime;
}

std::vector<std::int64_t> ReferenceZone::changesBetween(std::int64_t first, std::int64_t last) const {
    std::vector<std::int64_t> changes;
    for (std::size_t i = 1; i < spans_.size(); ++i) {
        if (spans_[i].first >= first && spans_[i].first <= last && spans_[i].offset != spans_[i - 1].offset)
            changes.push_back(spans_[i].first);
    }
    return changes;
}

std::int64_t dayNumber(int year, int month, int day) {
    static constexpr int daysBefore[] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334};
    const auto isLeap = [](int y) { return (y % 4 == 0 && y % 100 != 0) || y % 400 == 0; };
    std::int64_t days = 0;
    for (int y = 1970; y < year; ++y)
        days += isLeap(y) ? 366 : 365;
    return days + daysBefore[month - 1] + (month > 2 && isLeap(year) ? 1 : 0) + day - 1;
}

std::string dayText(std::int64_t day, std::size_t length) {
    int year = 1970;
    while (dayNumber(year + 1, 1, 1) <= day)
        ++year;
    int month = 1;
    while (month < 12 && dayNumber(year, month + 1, 1) <= day)
        ++month;
    const std::int64_t number = year * 10000 + month * 100 + day - dayNumber(year, month, 1) + 1;
    return std::to_string(number).substr(0, length);
}

ScopedTimeZone::ScopedTimeZone(const std::string& name) {
    const char* previous = std::getenv("TZ");
    wasSet_ = previous != nullptr;
    previous_ = wasSet_ ? previous : "";
    ::setenv("TZ", name.c_str(), 1);
}

ScopedTimeZone::~ScopedTimeZone() {
    if (wasSet_)
        ::setenv("TZ", previous_.c_str(), 1);
    else
        ::unsetenv("TZ");
}

}  // namespace corvane::test
