#include "app/json_encoding.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace corvane {
namespace {

using namespace std::string_literals;

template <typename Character>
Bytes encode(std::basic_string_view<Character> text, bool isBigEndian) {
    Bytes bytes;
    for (const Character unit : text) {
        for (std::size_t i = 0; i < sizeof(Character); ++i) {
            const std::size_t shift = 8 * (isBigEndian ? sizeof(Character) - 1 - i : i);
            bytes.push_back(static_cast<std::uint8_t>(static_cast<std::uint32_t>(unit) >> shift));
        }
    }
    return bytes;
}

TEST(JsonEncodingTest, ReadsEveryEncodingWithAndWithoutAByteOrderMark) {
    const std::string expected = "{\"a\":\"\u00FC\u65E5\U0001F600\uFFFD\"}";
    const std::u16string text16 = u"{\"a\":\"\u00FC\u65E5\U0001F600\uFFFD\"}";
    const std::u32string text32 = U"{\"a\":\"\u00FC\u65E5\U0001F600\uFFFD\"}";
    EXPECT_EQ(jsonTextInUtf8(asBytes(expected)), expected);
    EXPECT_EQ(jsonTextInUtf8(asBytes("\uFEFF" + expected)), "\uFEFF" + expected);
    for (const bool isBigEndian : {false, true}) {
        EXPECT_EQ(jsonTextInUtf8(encode<char16_t>(text16, isBigEndian)), expected) << isBigEndian;
        EXPECT_EQ(jsonTextInUtf8(encode<char16_t>(u"\uFEFF" + text16, isBigEndian)), "\uFEFF" + expected);
        EXPECT_EQ(jsonTextInUtf8(encode<char32_t>(text32, isBigEndian)), expected) << isBigEndian;
        EXPECT_EQ(jsonTextInUtf8(encode<char32_t>(U"\uFEFF" + text32, isBigEndian)), "\uFEFF" + expected);
    }
}

TEST(JsonEncodingTest, ReadsTheShortestObjects) {
    EXPECT_EQ(jsonTextInUtf8(asBytes("{}")), "{}");
    for (const bool isBigEndian : {false, true}) {
        EXPECT_EQ(jsonTextInUtf8(encode<char16_t>(u"{}", isBigEndian)), "{}");
        EXPECT_EQ(jsonTextInUtf8(encode<char32_t>(U"{}", isBigEndian)), "{}");
    }
    EXPECT_EQ(jsonTextInUtf8({}), "");
    EXPECT_EQ(jsonTextInUtf8(asBytes("1")), "1");
}

TEST(JsonEncodingTest, TakesNothingForAnEncodingThatOnlyBeginsLikeOne) {
    // A byte order mark of 16 bits, then a character whose lower half is zero.
    EXPECT_EQ(jsonTextInUtf8(encode<char16_t>(u"\uFEFF\u0100", false)), "\uFEFF\u0100");
    // A character whose lower half is zero behind one that is not.
    EXPECT_EQ(jsonTextInUtf8(encode<char16_t>(u"a\u0100", false)), "a\u0100");
    // Half a byte order mark is none; that it is no UTF-8 either is for the reader to find.
    for (const std::string_view text : {"\xFF{}", "\xFE{}", "\xFF\xFF{}", "\xFE\xFE{}"})
        EXPECT_EQ(jsonTextInUtf8(asBytes(text)), text);
}

TEST(JsonEncodingTest, RefusesTextsThatAreNotValid) {
    const std::u16string wide[] = {u"{\""s + char16_t{0xD800} + u"\"}", u"{\""s + char16_t{0xDC00} + u"\"}",
                                   u"{\""s + char16_t{0xDC00} + char16_t{0xD800} + u"\"}",
                                   u"{}"s + char16_t{0xD800}};
    const std::u32string wider[] = {U"{}"s + char32_t{0xD800}, U"{}"s + char32_t{0xDFFF},
                                    U"{}"s + char32_t{0x110000}, U"{}"s + char32_t{0xFFFFFFFF}};
    for (const bool isBigEndian : {false, true}) {
        for (const std::u16string& text : wide)
            EXPECT_EQ(jsonTextInUtf8(encode<char16_t>(text, isBigEndian)), std::nullopt);
        for (const std::u32string& text : wider)
            EXPECT_EQ(jsonTextInUtf8(encode<char32_t>(text, isBigEndian)), std::nullopt);
        Bytes cutOff = encode<char16_t>(u"{\"a\":1}", isBigEndian);
        cutOff.pop_back();
        EXPECT_EQ(jsonTextInUtf8(cutOff), std::nullopt);
        cutOff = encode<char32_t>(U"{\"a\":1}", isBigEndian);
        cutOff.pop_back();
        cutOff.pop_back();
        EXPECT_EQ(jsonTextInUtf8(cutOff), std::nullopt);
    }
}

}  // namespace
}  // namespace corvane
