#pragma once

#include <map>
#include <optional>
#include <string>

#include "platform/property_list/property_list_value.h"

namespace corvane {

/// Name of the key that holds the application's short name.
inline constexpr const char* bundleNameKey = "CFBundleName";
/// Name of the key that holds the build version.
inline constexpr const char* bundleVersionKey = "CFBundleVersion";

/// What the build says about the application.
class Bundle {
  public:
    virtual ~Bundle() = default;

    /// Absent when the application was built without one.
    virtual std::optional<std::map<std::string, PropertyListValue>> infoDictionary() const = 0;
};

}  // namespace corvane
