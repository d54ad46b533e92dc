#pragma once

#include <string>
#include <string_view>

namespace corvane {

/// The texts shown to the user in their language. Main thread only.
class LocalizedStrings {
  public:
    virtual ~LocalizedStrings() = default;

    /// The translation of the English text `key`; the key itself where there is none. The comment tells
    /// translators where the text stands and has no effect here.
    virtual std::string localizedString(std::string_view key, std::string_view comment) const = 0;
};

}  // namespace corvane
