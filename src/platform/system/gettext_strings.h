#pragma once

#include <filesystem>
#include <string>

#include "platform/localized_strings.h"

namespace corvane {

/// Translations out of GNU gettext catalogues, for the locale that the program has set (LC_MESSAGES, and the
/// variable LANGUAGE). Texts come out as UTF-8 whatever the locale's encoding is.
class GettextStrings final : public LocalizedStrings {
  public:
    /// Catalogues are `<localeFolder>/<language>/LC_MESSAGES/<domain>.mo`.
    explicit GettextStrings(const std::filesystem::path& localeFolder, std::string domain = "corvane");

    std::string localizedString(std::string_view key, std::string_view comment) const override;

  private:
    std::string domain_;
};

}  // namespace corvane
