#pragma once

#include "platform/localized_strings.h"

namespace corvane {

/// No translations: every text is its own key.
class SourceLanguageStrings final : public LocalizedStrings {
  public:
    std::string localizedString(std::string_view key, std::string_view /*comment*/) const override {
        return std::string(key);
    }
};

}  // namespace corvane
