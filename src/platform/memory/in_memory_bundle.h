#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>

#include "platform/bundle.h"

namespace corvane {

/// A bundle whose information is what it was given.
class InMemoryBundle final : public Bundle {
  public:
    using Information = std::map<std::string, PropertyListValue>;

    explicit InMemoryBundle(std::optional<Information> information) : information_(std::move(information)) {}

    std::optional<Information> infoDictionary() const override { return information_; }
    void setInfoDictionary(std::optional<Information> information) { information_ = std::move(information); }

  private:
    std::optional<Information> information_;
};

}  // namespace corvane
