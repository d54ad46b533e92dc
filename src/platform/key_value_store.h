#pragma once

#include <optional>
#include <string_view>

#include "platform/property_list/property_list_value.h"

namespace corvane {

/// The application's user-defaults domain: property-list values by key. Main thread only.
class KeyValueStore {
  public:
    virtual ~KeyValueStore() = default;

    /// Absent when the key is not in the domain.
    virtual std::optional<PropertyListValue> objectForKey(std::string_view key) const = 0;

    /// Storing an absent value removes the key. Takes effect for readers at once, on disk with `synchronize`.
    virtual void setObject(std::string_view key, std::optional<PropertyListValue> value) = 0;

    /// Writes the domain to disk. False when that failed; what was on disk before is then still there, whole.
    virtual bool synchronize() = 0;
};

}  // namespace corvane
