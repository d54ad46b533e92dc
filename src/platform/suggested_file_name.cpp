#include "platform/suggested_file_name.h"

#include <utf8.h>

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string_view>

namespace corvane {
namespace {

constexpr std::string_view blanks = " \t";
constexpr std::string_view unknownName = "Unknown";

char lowerCase(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

bool equalIgnoringCase(std::string_view left, std::string_view right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char a, char b) { return lowerCase(a) == lowerCase(b); });
}

std::string_view trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::optional<unsigned> hexDigit(char character) {
    if (character >= '0' && character <= '9')
        return static_cast<unsigned>(character - '0');
    const char lower = lowerCase(character);
    if (lower >= 'a' && lower <= 'f')
        return static_cast<unsigned>(lower - 'a') + 10;
    return std::nullopt;
}

/// "%HH" becomes its byte; a percent sign without two digits stays.
std::string percentDecoded(std::string_view text) {
    std::string decoded;
    for (std::size_t index = 0; index < text.size(); ++index) {
        if (text[index] == '%' && index + 2 < text.size()) {
            const auto high = hexDigit(text[index + 1]);
            const auto low = hexDigit(text[index + 2]);
            if (high && low) {
                decoded += static_cast<char>(*high * 16 + *low);
                index += 2;
                continue;
            }
        }
        decoded += text[index];
    }
    return decoded;
}

std::string utf8FromLatin1(std::string_view text) {
    std::string converted;
    for (const char character : text)
        utf8::append(static_cast<char32_t>(static_cast<unsigned char>(character)), converted);
    return converted;
}

bool isUtf8(std::string_view text) {
    return utf8::is_valid(text.begin(), text.end());
}

/// The content of the quoted text that begins at `index`, up to its closing quote or the end; moves `index`
/// behind it. Only a quote and a backslash can be escaped.
std::string readQuoted(std::string_view text, std::size_t& index) {
    std::string content;
    for (++index; index < text.size() && text[index] != '"'; ++index) {
        const bool isEscape = text[index] == '\\' && index + 1 < text.size() &&
                              (text[index + 1] == '"' || text[index + 1] == '\\');
        if (isEscape)
            ++index;
        content += text[index];
    }
    index = std::min(index + 1, text.size());
    return content;
}

/// A filename* value: character set, language and percent-encoded text, with "'" between. Absent when it is
/// not of that form, or in another character set than the two that everybody must know.
std::optional<std::string> decodeExtendedValue(std::string_view value) {
    const std::size_t firstQuote = value.find('\'');
    if (firstQuote == std::string_view::npos)
        return std::nullopt;
    const std::size_t secondQuote = value.find('\'', firstQuote + 1);
    if (secondQuote == std::string_view::npos)
        return std::nullopt;
    const std::string_view characterSet = value.substr(0, firstQuote);
    std::string decoded = percentDecoded(value.substr(secondQuote + 1));
    if (equalIgnoringCase(characterSet, "UTF-8") && isUtf8(decoded))
        return decoded;
    if (equalIgnoringCase(characterSet, "ISO-8859-1"))
        return utf8FromLatin1(decoded);
    return std::nullopt;
}

/// The two file name parameters of a Content-Disposition header; of several of a kind the first counts.
struct FileNameParameters {
    std::optional<std::string> plain;
    std::optional<std::string> extended;
};

void keepFirst(std::optional<std::string>& kept, std::optional<std::string> value) {
    if (!kept && value && !value->empty())
        kept = std::move(value);
}

FileNameParameters parseContentDisposition(std::string_view text) {
    FileNameParameters parameters;
    std::size_t index = 0;
    while (index < text.size()) {
        const std::size_t nameEnd = std::min(text.find_first_of(";=", index), text.size());
        const std::string_view name = trimmed(text.substr(index, nameEnd - index));
        index = nameEnd;
        if (index == text.size() || text[index] == ';') {
            ++index;
            continue;
        }
        index = std::min(text.find_first_not_of(blanks, index + 1), text.size());
        std::string value;
        if (index < text.size() && text[index] == '"')
            value = readQuoted(text, index);
        const std::size_t end = std::min(text.find(';', index), text.size());
        if (value.empty())
            value = trimmed(text.substr(index, end - index));
        index = end + 1;
        if (equalIgnoringCase(name, "filename"))
            keepFirst(parameters.plain, utf8FromLatin1(value));
        else if (equalIgnoringCase(name, "filename*"))
            keepFirst(parameters.extended, decodeExtendedValue(value));
    }
    return parameters;
}

std::optional<std::string> nameFromHeaders(const HttpResponse& response) {
    FileNameParameters found;
    for (const HttpHeader& header : response.headers) {
        if (!equalIgnoringCase(header.name, "Content-Disposition"))
            continue;
        FileNameParameters parameters = parseContentDisposition(header.value);
        keepFirst(found.plain, std::move(parameters.plain));
        keepFirst(found.extended, std::move(parameters.extended));
    }
    return found.extended ? found.extended : found.plain;
}

std::string nameFromUrl(std::string_view url) {
    url = url.substr(0, url.find_first_of("?#"));
    const std::size_t scheme = url.find("://");
    if (scheme != std::string_view::npos) {
        const std::size_t path = url.find('/', scheme + 3);
        url = path == std::string_view::npos ? std::string_view() : url.substr(path);
    }
    const std::size_t last = url.find_last_not_of('/');
    if (last == std::string_view::npos)
        return std::string(unknownName);
    url = url.substr(0, last + 1);
    const std::string_view component = url.substr(url.find_last_of('/') + 1);
    std::string decoded = percentDecoded(component);
    return isUtf8(decoded) ? decoded : utf8FromLatin1(component);
}

}  // namespace

std::string suggestedFileName(const HttpResponse& response) {
    std::string name = nameFromHeaders(response).value_or(std::string());
    if (name.empty())
        name = nameFromUrl(response.url);
    std::replace(name.begin(), name.end(), '/', '_');
    return name;
}

}  // namespace corvane
