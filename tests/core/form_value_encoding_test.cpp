#include "core/form_value_encoding.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace corvane {
namespace {

using namespace std::string_view_literals;

struct EncodingCase {
    std::string_view text;
    std::string_view firstPass;
    std::string_view wholeForm;
};

constexpr std::string_view lettersAndDigits =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";

constexpr EncodingCase cases[] = {
    {"", "", ""},
    {lettersAndDigits, lettersAndDigits, lettersAndDigits},
    {"x=1&y=2", "x=1&y=2", "x=1&y=2"},
    {"-._~", "-._~", "-._~"},
    {"@", "@", "%40"},
    {"/", "/", "%2F"},
    {"+", "+", "%2B"},
    {"!$'()*,:;?", "!$'()*,:;?", "%21%24%27%28%29%2A%2C%3A%3B%3F"},
    {"%", "%25", "%25"},
    {"%20", "%2520", "%2520"},
    {"a b", "a%20b", "a%20b"},
    {"#", "%23", "%23"},
    {"\"<>[\\]^`{|}", "%22%3C%3E%5B%5C%5D%5E%60%7B%7C%7D", "%22%3C%3E%5B%5C%5D%5E%60%7B%7C%7D"},
    {"\0\t\n\r\x1F\x7F"sv, "%00%09%0A%0D%1F%7F", "%00%09%0A%0D%1F%7F"},
    {"\u00FC", "%C3%BC", "%C3%BC"},
    {"u\u0308", "u%CC%88", "u%CC%88"},  // a decomposed letter stays so
    {"\u6F22", "%E6%BC%A2", "%E6%BC%A2"},
    {"\U0001F34E", "%F0%9F%8D%8E", "%F0%9F%8D%8E"},
    {"\uFFFF\U0010FFFF", "%EF%BF%BF%F4%8F%BF%BF", "%EF%BF%BF%F4%8F%BF%BF"},
};

TEST(FormValueEncoding, EscapesWhatAUrlCannotHoldInAFormValue) {
    for (const EncodingCase& test : cases)
        EXPECT_EQ(escapeIllegalURLCharacters(test.text), test.firstPass) << test.text;
}

TEST(FormValueEncoding, EscapesAWholeForm) {
    for (const EncodingCase& test : cases)
        EXPECT_EQ(URLEncodeString(test.text), test.wholeForm) << test.text;
}

TEST(FormValueEncoding, KeepsExactlyTheCharactersOfEachPass) {
    std::string keptByFirstPass;
    std::string keptByForm;
    for (char character = 0; character >= 0 && character < 127; ++character) {
        const std::string text(1, character);
        if (escapeIllegalURLCharacters(text) == text)
            keptByFirstPass += character;
        if (URLEncodeString(text) == text)
            keptByForm += character;
    }
    EXPECT_EQ(keptByFirstPass,
              "!$&'()*+,-./0123456789:;=?@ABCDEFGHIJKLMNOPQRSTUVWXYZ_abcdefghijklmnopqrstuvwxyz~");
    EXPECT_EQ(keptByForm, "&-.0123456789=ABCDEFGHIJKLMNOPQRSTUVWXYZ_abcdefghijklmnopqrstuvwxyz~");
}

TEST(FormValueEncoding, RefusesWhatIsNoUtf8) {
    for (const std::string_view text : {"\x80"sv, "a\xFF"sv, "\xC3"sv, "\xC0\x80"sv, "\xED\xA0\x80"sv,
                                        "\xF4\x90\x80\x80"sv, "\xE6\xBC"sv}) {
        EXPECT_EQ(escapeIllegalURLCharacters(text), std::nullopt) << text.size();
        EXPECT_EQ(URLEncodeString(text), std::nullopt) << text.size();
    }
}

// What a form reader does with each value, once.
std::string percentDecoded(std::string_view text) {
    std::string decoded;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            decoded += text[i];
            continue;
        }
        decoded += static_cast<char>(std::stoi(std::string(text.substr(i + 1, 2)), nullptr, 16));
        i += 2;
    }
    return decoded;
}

TEST(FormValueEncoding, ComesBackAfterOneDecodingForEachPass) {
    std::string everyByteOfAscii;
    for (int byte = 0; byte < 128; ++byte)
        everyByteOfAscii += static_cast<char>(byte);
    for (const std::string& text : {everyByteOfAscii, std::string("\u00E4 50% \u6F22\U0001F34E %20%2520")}) {
        const std::string once = escapeIllegalURLCharacters(text).value();
        const std::string twice = URLEncodeString(once).value();
        EXPECT_EQ(percentDecoded(once), text);
        EXPECT_EQ(percentDecoded(twice), once);
    }
}

}  // namespace
}  // namespace corvane
