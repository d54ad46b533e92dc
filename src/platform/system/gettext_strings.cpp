#include "platform/system/gettext_strings.h"

#include <libintl.h>

#include <utility>

namespace corvane {

GettextStrings::GettextStrings(const std::filesystem::path& localeFolder, std::string domain)
    : domain_(std::move(domain)) {
    bindtextdomain(domain_.c_str(), localeFolder.c_str());
    bind_textdomain_codeset(domain_.c_str(), "UTF-8");
}

std::string GettextStrings::localizedString(std::string_view key, std::string_view /*comment*/) const {
    // The catalogue's own header is the translation of the empty text.
    if (key.empty() || key.find('\0') != std::string_view::npos)
        return std::string(key);
    return dgettext(domain_.c_str(), std::string(key).c_str());
}

}  // namespace corvane
