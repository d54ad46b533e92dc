#pragma once

#include <string>

#include "platform/bundle.h"

namespace corvane {

inline constexpr const char* programName = "Corvane";

/// The application's information as the build knows it.
class BuildBundle final : public Bundle {
  public:
    explicit BuildBundle(std::string version) : version_(std::move(version)) {}

    std::optional<std::map<std::string, PropertyListValue>> infoDictionary() const override {
        return std::map<std::string, PropertyListValue>{{bundleNameKey, programName},
                                                        {bundleVersionKey, version_}};
    }

  private:
    std::string version_;
};

}  // namespace corvane
