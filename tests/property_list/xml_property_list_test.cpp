#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "platform/property_list/property_list_reader.h"
#include "platform/property_list/xml_property_list_objects.h"
#include "platform/property_list/xml_property_list_scalars.h"

namespace corvane {
namespace {

std::optional<PropertyListValue> readXml(std::string_view text) {
    return readPropertyList(asBytes(text));
}

struct XmlCase {
    std::string_view xml;
    PropertyListValue value;
};

TEST(XmlPropertyList, ReadsAFileAsTheMacWritesIt) {
    const auto value = readXml(
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
        "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
        "<plist version=\"1.0\">\n<dict>\n\t<key>list</key>\n\t<array>\n\t\t<string>20150104</string>\n"
        "\t\t<integer>7</integer>\n\t</array>\n\t<key>data</key>\n\t<data>\n\tAQID\n\t</data>\n"
        "</dict>\n</plist>\n");
    EXPECT_EQ(value,
              PropertyListValue(PropertyListDictionary{
                  {"list", PropertyListArray{"20150104", std::int64_t{7}}}, {"data", Bytes{1, 2, 3}}}));
}

TEST(XmlPropertyList, ReadsEveryForm) {
    const std::vector<XmlCase> cases = {
        {"<true/>", true},
        {"<false />", false},
        {"<true></true>", true},
        {"\xEF\xBB\xBF<plist><true/></plist>", true},
        {"<plist version='1.0' other=\"a>b\"><true/></plist>", true},
        {"<!-- one --><?pi?><plist><!-- two --><true/></plist><!-- three -->", true},
        {"<!DOCTYPE plist [<!ENTITY x 'y]>'> <!-- ' --> ]><true/>", true},
        {"<integer>42</integer>", std::int64_t{42}},
        {"<integer> +42\n</integer>", std::int64_t{42}},
        {"<integer>-42</integer>", std::int64_t{-42}},
        {"<integer>4<!-- -->2</integer>", std::int64_t{42}},
        {"<integer>4&#50;</integer>", std::int64_t{42}},
        {"<integer>0x1F</integer>", std::int64_t{31}},
        {"<integer>-0Xff</integer>", std::int64_t{-255}},
        {"<integer>9223372036854775807</integer>", std::numeric_limits<std::int64_t>::max()},
        {"<integer>9223372036854775808</integer>", std::uint64_t{9223372036854775808U}},
        {"<integer>18446744073709551615</integer>", std::numeric_limits<std::uint64_t>::max()},
        {"<integer>-9223372036854775808</integer>", std::numeric_limits<std::int64_t>::min()},
        {"<real>2.5</real>", 2.5},
        {"<real> +1e-3 </real>", 0.001},
        {"<real>-inf</real>", -std::numeric_limits<double>::infinity()},
        {"<real>infinity</real>", std::numeric_limits<double>::infinity()},
        {"<date>2001-01-01T00:00:01Z</date>", PropertyListDate{1}},
        {"<date>2000-02-29T23:59:59Z</date>", PropertyListDate{-26438401}},
        {"<data/>", Bytes{}},
        {"<data>AA==</data>", Bytes{0}},
        {"<data> A Q\nI\t=</data>", Bytes{1, 2}},
        {"<data>AQI</data>", Bytes{1, 2}},
        {"<data>+/+/</data>", Bytes{0xFB, 0xFF, 0xBF}},
        {"<data><![CDATA[AQID]]></data>", Bytes{1, 2, 3}},
        {"<string/>", ""},
        {"<string></string>", ""},
        {"<string> kept </string>", " kept "},
        {"<string>&lt;&gt;&amp;&quot;&apos;</string>", "<>&\"'"},
        {"<string>&#65;&#x42;&#x1F600;</string>", "AB😀"},
        {"<string>a<![CDATA[<&amp;]]>b<!-- no -->c</string>", "a<&amp;bc"},
        {"<string>a\r\nb\rc&#13;d</string>", "a\nb\nc\rd"},
        {"<string>a\r</string>", "a\n"},
        {"<string>Grüße</string >", "Grüße"},
        {"<array/>", PropertyListArray{}},
        {"<array></array>", PropertyListArray{}},
        {"<array><array/><dict/></array>", PropertyListArray{PropertyListArray{}, PropertyListDictionary{}}},
        {"<dict/>", PropertyListDictionary{}},
        {"<dict><key/><true/></dict>", PropertyListDictionary{{"", true}}},
        {"<dict><key>a</key><true/><key>a</key><false/></dict>", PropertyListDictionary{{"a", true}}},
        {"<dict><key>CF$UID</key><integer>5</integer></dict>", PropertyListUid{5}},
        {"<array><dict><key>CF$UID</key><integer>0x10</integer></dict></array>",
         PropertyListArray{PropertyListUid{16}}},
        // Dictionaries that only look like UIDs.
        {"<dict><key>CF$UID</key><integer>-5</integer></dict>",
         PropertyListDictionary{{"CF$UID", std::int64_t{-5}}}},
        {"<dict><key>CF$UID</key><string>5</string></dict>", PropertyListDictionary{{"CF$UID", "5"}}},
        {"<dict><key>CF$UID</key><integer>5</integer><key>x</key><true/></dict>",
         PropertyListDictionary{{"CF$UID", std::int64_t{5}}, {"x", true}}},
    };
    for (const XmlCase& known : cases)
        EXPECT_EQ(readXml(known.xml), known.value) << known.xml;
}

TEST(XmlPropertyList, ReadsNotANumber) {
    const auto value = readXml("<real>nan</real>");
    ASSERT_TRUE(value && value->get<double>());
    EXPECT_TRUE(std::isnan(*value->get<double>()));
}

TEST(XmlPropertyList, RefusesWhatIsMalformed) {
    const std::vector<std::string_view> texts = {
        "<",
        "<plist>",
        "<plist/>",
        "<plist></plist>",
        "<plist><true/><true/></plist>",
        "<plist><true/></plist><true/>",
        "<plist><plist><true/></plist></plist>",
        "<plist><true/></plist></plist>",
        "<true/><plist></plist>",
        "<array><plist><true/></plist></array>",
        "<true/><true/>",
        "<true",
        "<true/",
        "<true x='/>",
        "<true>x</true>",
        "<true> </true>",
        "<unknown/>",
        "<True/>",
        "text",
        "<plist>text<true/></plist>",
        "<array>text</array>",
        "<array><true/>",
        "<array></dict>",
        "<array></array/>",
        "</array>",
        "<key>a</key>",
        "<array><key>a</key></array>",
        "<dict><true/></dict>",
        "<dict><key>a</key></dict>",
        "<dict><key>a</key><key>b</key></dict>",
        "<dict><key>a</key><true/><true/></dict>",
        "<string>a",
        "<string>a<b/></string>",
        "<string>a</str>",
        "<string>a</string/>",
        "<string>a</string",
        "<array></plist></array>",
        "<plist><array></plist></array>",
        "<plist><!DOCTYPE plist><true/></plist>",
        "<array><!DOCTYPE plist></array>",
        "<string>a<!-- </string>",
        "<string>a<![CDATA[ </string>",
        "<string>&unknown;</string>",
        "<integer>1&unknown;</integer>",
        "<real>1&unknown;</real>",
        "<date>2001-01-01T00:00:0&unknown;1Z</date>",
        "<data>AQID&unknown;</data>",
        "<string>&</string>",
        "<string>&amp</string>",
        "<string>&#;</string>",
        "<string>&#x;</string>",
        "<string>&#0;</string>",
        "<string>&#xD800;</string>",
        "<string>&#x110000;</string>",
        "<string>&#-1;</string>",
        "<string>\xFF</string>",
        "<!DOCTYPE plist [<!ENTITY x 'y'>]><string>&x;</string>",
        "<!DOCTYPE plist [<!ENTITY x SYSTEM 'file:///etc/hostname'>]><string>&x;</string>",
        "<!DOCTYPE plist [ <true/>",
        "<!DOCTYPE plist \"><true/>",
        "<true/><!DOCTYPE plist>",
        "<integer></integer>",
        "<integer>x</integer>",
        "<integer>1 2</integer>",
        "<integer>--1</integer>",
        "<integer>0x</integer>",
        "<integer>1.5</integer>",
        "<integer>18446744073709551616</integer>",
        "<integer>-9223372036854775809</integer>",
        "<real></real>",
        "<real>1,5</real>",
        "<real>+-1</real>",
        "<date>2001-01-01</date>",
        "<date>2001-01-01T00:00:00</date>",
        "<date>2001-02-29T00:00:00Z</date>",
        "<date>2001-13-01T00:00:00Z</date>",
        "<date>2001-01-01T24:00:00Z</date>",
        "<date>2001-01-01T00:60:00Z</date>",
        "<date>2001-01-01T00:00:61Z</date>",
        "<date>2001-01-01 00:00:00Z</date>",
        "<date>2001-01-01T0x:00:00Z</date>",
        "<data>A</data>",
        "<data>AQID!</data>",
        "<data>AQI:</data>",
        "<data>AQI{</data>",
        "<data>AQ==AQ</data>",
        "<!-- <true/>",
        "<?pi <true/>",
    };
    for (const std::string_view text : texts)
        EXPECT_EQ(readXml(text), std::nullopt) << text;
}

TEST(XmlPropertyList, TextBetweenTagsHoldsNoTagsAndNothingUnclosed) {
    EXPECT_EQ(xmlText("a<!-- b --><![CDATA[<c>]]>"), "a<c>");
    for (const char* content : {"a<b/>", "<", "a<!-- b", "a<![CDATA[b"})
        EXPECT_EQ(xmlText(content), std::nullopt) << content;
}

TEST(XmlPropertyList, HasNoObjectBeyondItsLast) {
    const auto objects = XmlPropertyListObjects::open(asBytes("<array><true/></array>"));
    ASSERT_NE(objects, nullptr);
    EXPECT_TRUE(objects->object(0));
    EXPECT_TRUE(objects->object(1));
    EXPECT_FALSE(objects->object(2));
}

}  // namespace
}  // namespace corvane
