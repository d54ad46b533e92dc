#include "demo_service/form.h"

#include <charconv>

namespace corvane::demo {

std::string withoutEscapes(std::string_view text) {
    std::string plain;
    plain.reserve(text.size());
    std::size_t position = 0;
    while (position < text.size()) {
        const std::string_view digits = text.substr(position + 1, 2);
        unsigned value = 0;
        const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
        const bool isEscape = text[position] == '%' && digits.size() == 2 && error == std::errc{} &&
                              end == digits.data() + digits.size();
        plain.push_back(isEscape ? static_cast<char>(value) : text[position]);
        position += isEscape ? 3 : 1;
    }
    return plain;
}

std::map<std::string, std::string, std::less<>> fieldsOfForm(std::string_view body) {
    std::map<std::string, std::string, std::less<>> fields;
    while (!body.empty()) {
        const std::string_view piece = body.substr(0, body.find('&'));
        const std::size_t equals = piece.find('=');
        if (equals != std::string_view::npos) {
            fields.emplace(withoutEscapes(piece.substr(0, equals)),
                           withoutEscapes(withoutEscapes(piece.substr(equals + 1))));
        }
        body.remove_prefix(std::min(body.size(), piece.size() + 1));
    }
    return fields;
}

}  // namespace corvane::demo
