#include "app/version_components.h"

#include <charconv>
#include <cstddef>
#include <system_error>

namespace corvane {

namespace {

bool startsWithDigit(std::string_view text) {
    return !text.empty() && text.front() >= '0' && text.front() <= '9';
}

std::int64_t component(std::string_view part) {
    if (part.starts_with('+')) {
        part.remove_prefix(1);
        if (!startsWithDigit(part))
            return 0;
    }
    std::int64_t number = 0;
    const char* const end = part.data() + part.size();
    const auto [parsed, error] = std::from_chars(part.data(), end, number);
    return error == std::errc{} && parsed == end ? number : 0;
}

}  // namespace

std::vector<std::int64_t> versionComponents(std::string_view version) {
    std::vector<std::int64_t> components;
    for (std::size_t point = version.find('.'); point != std::string_view::npos; point = version.find('.')) {
        components.push_back(component(version.substr(0, point)));
        version.remove_prefix(point + 1);
    }
    components.push_back(component(version));
    return components;
}

}  // namespace corvane
