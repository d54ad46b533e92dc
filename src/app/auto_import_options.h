#pragma once

#include "app/json_object.h"

namespace corvane {

/// What a host application may ask of an import. Members that it does not know are ignored.
struct AutoImportOptions {
    explicit AutoImportOptions(JsonObject members) : members_(std::move(members)) {}

    /// The member "isLite": true or a number other than zero; everything else, and none, is false.
    bool isLite() const;

    /// For the log; long ones are cut.
    std::string description() const;

  private:
    JsonObject members_;
};

}  // namespace corvane
