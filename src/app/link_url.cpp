#include "app/link_url.h"

#include <algorithm>
#include <cstddef>

namespace corvane {

namespace {

bool isLetter(char character) {
    return (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z');
}

bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

bool isHexDigit(char character) {
    return isDigit(character) || (character >= 'A' && character <= 'F') ||
           (character >= 'a' && character <= 'f');
}

bool isLegal(char character) {
    constexpr std::string_view others = "!$&'()*+,-./:;=?@_~[]#%";
    return isLetter(character) || isDigit(character) || others.find(character) != std::string_view::npos;
}

bool escapesAreWhole(std::string_view text) {
    for (std::size_t i = text.find('%'); i != std::string_view::npos; i = text.find('%', i + 1)) {
        if (text.size() - i < 3 || !isHexDigit(text[i + 1]) || !isHexDigit(text[i + 2]))
            return false;
    }
    return true;
}

bool hasScheme(std::string_view text) {
    const auto isPartOfScheme = [](char character) {
        return isLetter(character) || isDigit(character) || character == '+' || character == '-' ||
               character == '.';
    };
    const auto end = std::find_if_not(text.begin(), text.end(), isPartOfScheme);
    return end != text.begin() && end != text.end() && *end == ':' && isLetter(text.front());
}

}  // namespace

bool isAbsoluteURL(std::string_view text) {
    return std::all_of(text.begin(), text.end(), isLegal) && std::count(text.begin(), text.end(), '#') <= 1 &&
           escapesAreWhole(text) && hasScheme(text);
}

}  // namespace corvane
