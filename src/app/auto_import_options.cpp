#include "app/auto_import_options.h"

#include <cstddef>

namespace corvane {

namespace {

constexpr std::size_t longestDescription = 1000;

std::string describe(const JsonMember& member) {
    if (const bool* value = std::get_if<bool>(&member))
        return *value ? "1" : "0";
    if (const double* value = std::get_if<double>(&member))
        return std::to_string(*value);
    if (const std::string* value = std::get_if<std::string>(&member))
        return '"' + value->substr(0, longestDescription) + '"';
    return "...";
}

}  // namespace

bool AutoImportOptions::isLite() const {
    const auto found = members_.find("isLite");
    if (found == members_.end())
        return false;
    if (const bool* value = std::get_if<bool>(&found->second))
        return *value;
    const double* number = std::get_if<double>(&found->second);
    return number != nullptr && *number != 0.0;
}

std::string AutoImportOptions::description() const {
    std::string text = "{";
    for (const auto& [name, member] : members_) {
        text += ' ' + name.substr(0, longestDescription) + " = " + describe(member) + ';';
        if (text.size() > longestDescription)
            return text.substr(0, longestDescription) + "... }";
    }
    return text + " }";
}

}  // namespace corvane
