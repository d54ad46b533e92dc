#include "app/json_object.h"

#include <cstddef>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <utility>

namespace corvane {

namespace {

constexpr std::size_t maximumDepth = 512;
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view blanks = " \t\r\n";

/// Keeps the members of the top-level object and only checks everything below it; stops at any other text.
/// The parser itself stops at numbers that are too large.
class MemberReader final : public nlohmann::json::json_sax_t {
  public:
    JsonObject members() && { return std::move(members_); }

    bool null() override { return add(OtherJson{}); }
    bool boolean(bool value) override { return add(value); }
    bool number_integer(std::int64_t value) override { return add(static_cast<double>(value)); }
    bool number_unsigned(std::uint64_t value) override { return add(static_cast<double>(value)); }
    bool number_float(double value, const std::string& literal) override {
        const std::string_view mantissa = std::string_view(literal).substr(0, literal.find_first_of("eE"));
        const bool isTooSmall = value == 0.0 && mantissa.find_first_of("123456789") != std::string_view::npos;
        return !isTooSmall && add(value);
    }
    bool string(std::string& value) override { return add(std::move(value)); }
    bool binary(nlohmann::json::binary_t& /*value*/) override { return false; }

    bool start_object(std::size_t /*elements*/) override { return startContainer(); }
    bool key(std::string& name) override {
        if (depth_ == 1)
            name_ = std::move(name);
        return true;
    }
    bool end_object() override { return endContainer(); }
    bool start_array(std::size_t /*elements*/) override { return depth_ > 0 && startContainer(); }
    bool end_array() override { return endContainer(); }

    bool parse_error(std::size_t /*position*/, const std::string& /*token*/,
                     const nlohmann::json::exception& /*error*/) override {
        return false;
    }

  private:
    bool add(JsonMember value) {
        if (depth_ == 1)
            members_.emplace(name_, std::move(value));
        return depth_ > 0;
    }

    bool startContainer() {
        if (depth_ == 1)
            members_.emplace(name_, OtherJson{});
        return ++depth_ <= maximumDepth;
    }

    bool endContainer() {
        --depth_;
        return true;
    }

    JsonObject members_;
    std::string name_;
    std::size_t depth_ = 0;
};

/// Drops each comma that follows an element and precedes the end of its array or object.
std::string withoutTrailingCommas(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    bool isInString = false;
    char lastToken = '[';
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char character = text[i];
        if (isInString && character == '\\' && i + 1 < text.size()) {
            result += character;
            result += text[++i];
            continue;
        }
        if (character == '"')
            isInString = !isInString;
        if (!isInString && character == ',') {
            const std::size_t next = text.find_first_not_of(blanks, i + 1);
            const bool closes = next != std::string_view::npos && (text[next] == ']' || text[next] == '}');
            const bool followsElement =
                lastToken != '[' && lastToken != '{' && lastToken != ',' && lastToken != ':';
            if (closes && followsElement)
                continue;
        }
        if (blanks.find(character) == std::string_view::npos)
            lastToken = character;
        result += character;
    }
    return result;
}

}  // namespace

std::optional<JsonObject> parseJsonObject(std::string_view text) {
    if (text.starts_with(byteOrderMark))
        text.remove_prefix(byteOrderMark.size());
    if (text.find('\0') != std::string_view::npos)
        return std::nullopt;  // the parser would take it for the end
    MemberReader reader;
    if (!nlohmann::json::sax_parse(withoutTrailingCommas(text), &reader))
        return std::nullopt;
    return std::move(reader).members();
}

}  // namespace corvane
