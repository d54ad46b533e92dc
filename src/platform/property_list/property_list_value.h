#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "platform/bytes.h"

namespace corvane {

class PropertyListValue;

using PropertyListArray = std::vector<PropertyListValue>;
using PropertyListDictionary = std::map<std::string, PropertyListValue>;

/// Seconds since 2001-01-01 00:00:00 UTC, as property lists count them.
struct PropertyListDate {
    double secondsSince2001 = 0;

    bool operator==(const PropertyListDate&) const = default;
};

/// A reference into the object table of a keyed archive; a type of its own, not an integer.
struct PropertyListUid {
    std::uint64_t index = 0;

    bool operator==(const PropertyListUid&) const = default;
};

/// One value of a property list, with everything that it contains. Texts are valid UTF-8.
class PropertyListValue {
  public:
    using Variant = std::variant<bool, std::int64_t, std::uint64_t, double, PropertyListDate, Bytes,
                                 std::string, PropertyListUid, PropertyListArray, PropertyListDictionary>;

    PropertyListValue(bool value) : content_(value) {}
    PropertyListValue(std::int64_t value) : content_(value) {}
    PropertyListValue(std::uint64_t value) : content_(value) {}
    PropertyListValue(double value) : content_(value) {}
    PropertyListValue(PropertyListDate value) : content_(value) {}
    PropertyListValue(Bytes value) : content_(std::move(value)) {}
    PropertyListValue(std::string value) : content_(std::move(value)) {}
    PropertyListValue(const char* value) : content_(std::string(value)) {}
    PropertyListValue(PropertyListUid value) : content_(value) {}
    PropertyListValue(PropertyListArray value) : content_(std::move(value)) {}
    PropertyListValue(PropertyListDictionary value) : content_(std::move(value)) {}

    /// The content when it is of type T, else null.
    template <typename T>
    const T* get() const {
        return std::get_if<T>(&content_);
    }
    template <typename T>
    T* get() {
        return std::get_if<T>(&content_);
    }

    const Variant& content() const { return content_; }

    bool operator==(const PropertyListValue&) const = default;

  private:
    Variant content_;
};

}  // namespace corvane
