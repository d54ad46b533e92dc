#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <string>

#include "platform/property_list/binary_property_list_writer.h"
#include "platform/property_list/property_list_objects.h"
#include "platform/property_list/property_list_reader.h"
#include "property_list/allocation_meter.h"
#include "property_list/handmade_property_list.h"
#include "property_list/sample_property_list.h"

namespace corvane {
namespace {

constexpr std::size_t mebibyte = std::size_t{1} << 20;
constexpr std::size_t memoryBound = 48 * mebibyte;
constexpr std::size_t allocationBound = 1'000'000;

/// Reads the file and holds what that cost against the bounds.
std::optional<PropertyListValue> readMetered(const Bytes& file) {
    const AllocationMeter meter;
    std::optional<PropertyListValue> value = readPropertyList(file);
    EXPECT_LT(meter.peakBytes(), memoryBound);
    EXPECT_LT(meter.allocationCount(), allocationBound);
    return value;
}

Bytes repeated(std::string_view text, std::size_t count) {
    std::string whole;
    whole.reserve(text.size() * count);
    for (std::size_t index = 0; index < count; ++index)
        whole += text;
    return toBytes(whole);
}

/// Arrays in arrays, the innermost empty.
Bytes nestedArrays(std::size_t depth) {
    HandmadePropertyList list;
    list.referenceWidth = 4;
    list.offsetWidth = 4;
    for (std::size_t index = 1; index < depth; ++index)
        list.objects.push_back(joined({{0xA1}, bigEndian(index, 4)}));
    list.objects.push_back({0xA0});
    return list.bytes();
}

/// Each array refers to the next one `fan` times.
Bytes sharedArrays(std::size_t levels, std::uint8_t fan, const Bytes& innermost) {
    HandmadePropertyList list;
    for (std::size_t level = 1; level <= levels; ++level)
        list.objects.push_back(
            joined({{static_cast<std::uint8_t>(0xA0U | fan)}, Bytes(fan, static_cast<std::uint8_t>(level))}));
    list.objects.push_back(innermost);
    list.offsetWidth = 4;
    return list.bytes();
}

TEST(HostilePropertyList, NestingIsReadUpToTheLimitAndNoFurther) {
    EXPECT_TRUE(readMetered(nestedArrays(maximumPropertyListDepth)));
    EXPECT_FALSE(readMetered(nestedArrays(maximumPropertyListDepth + 1)));
    EXPECT_FALSE(readMetered(nestedArrays(100'000)));
}

TEST(HostilePropertyList, NestedXmlIsReadUpToTheLimitAndNoFurther) {
    const auto nested = [](std::size_t depth) {
        return joined({repeated("<array>", depth), repeated("</array>", depth)});
    };
    EXPECT_TRUE(readMetered(nested(maximumPropertyListDepth)));
    EXPECT_FALSE(readMetered(nested(maximumPropertyListDepth + 1)));
    EXPECT_FALSE(readMetered(nested(100'000)));
    EXPECT_FALSE(readMetered(repeated("<array>", maximumPropertyListFileSize / 7)));
    EXPECT_FALSE(readMetered(repeated("<dict><key/>", maximumPropertyListFileSize / 12)));
}

TEST(HostilePropertyList, LoopsEnd) {
    EXPECT_FALSE(readMetered(HandmadePropertyList{{{0xA1, 0}}}.bytes()));
    EXPECT_FALSE(readMetered(HandmadePropertyList{{{0xA2, 0, 0}}}.bytes()));
    EXPECT_FALSE(readMetered(HandmadePropertyList{{{0xD1, 1, 0}, {0x51, 'k'}}}.bytes()));
    EXPECT_FALSE(readMetered(HandmadePropertyList{{{0xA2, 1, 1}, {0xA2, 0, 0}}}.bytes()));
}

TEST(HostilePropertyList, SharedObjectsDoNotExplode) {
    EXPECT_TRUE(readMetered(sharedArrays(3, 10, {0x09})));
    EXPECT_FALSE(readMetered(sharedArrays(30, 14, {0x09})));
    EXPECT_FALSE(readMetered(sharedArrays(30, 14, {0xA0})));
    EXPECT_FALSE(readMetered(sharedArrays(30, 14, {0x50})));
    EXPECT_FALSE(readMetered(sharedArrays(30, 14, {0x40})));
    EXPECT_FALSE(readMetered(sharedArrays(2, 14, longObject(dataKind, mebibyte, Bytes(mebibyte, 1)))));
    EXPECT_FALSE(readMetered(sharedArrays(2, 14, longObject(asciiKind, mebibyte, Bytes(mebibyte, 'x')))));
    EXPECT_FALSE(readMetered(sharedArrays(2, 14, longObject(utf16Kind, mebibyte / 2, Bytes(mebibyte, 'x')))));
}

TEST(HostilePropertyList, OneArrayOfManyReferencesToOneObjectStaysBounded) {
    const std::size_t count = 7 * mebibyte;
    EXPECT_FALSE(readMetered(
        HandmadePropertyList{{longObject(arrayKind, count, Bytes(count, 1)), {0x09}}, 0, 4, 1}.bytes()));
    EXPECT_FALSE(readMetered(
        HandmadePropertyList{{longObject(dictionaryKind, count / 2, Bytes(count, 1)), {0x50}}, 0, 4, 1}
            .bytes()));
}

TEST(HostilePropertyList, OverlappingObjectsStayBounded) {
    // Every object is the tail of one long run of array markers that all claim fourteen elements.
    const std::size_t count = 100'000;
    HandmadePropertyList list{{Bytes(count, 0xAE)}, 0, 4, 2};
    std::vector<std::uint64_t> offsets;
    for (std::uint64_t offset = 8; offset < 8 + count; ++offset)
        offsets.push_back(offset);
    EXPECT_FALSE(readMetered(list.bytesWithOffsets(offsets)));
}

TEST(HostilePropertyList, ManySmallXmlElementsStayBounded) {
    const auto arrayOf = [](std::string_view element) {
        const std::size_t count = (maximumPropertyListFileSize - 15) / element.size();
        return joined({toBytes("<array>"), repeated(element, count), toBytes("</array>")});
    };
    for (const char* element : {"<data/>", "<dict/>", "<string>&#65;</string>", "<!---->", "<array/>"})
        readMetered(arrayOf(element));
}

TEST(HostilePropertyList, LongXmlContentsStayBounded) {
    const std::size_t size = maximumPropertyListFileSize - 64;
    const auto inElement = [](std::string_view name, const Bytes& content) {
        return joined(
            {toBytes("<" + std::string(name) + ">"), content, toBytes("</" + std::string(name) + ">")});
    };
    EXPECT_TRUE(readMetered(inElement("string", Bytes(size, 'x'))));
    EXPECT_TRUE(readMetered(inElement("data", Bytes(size / 4 * 4, 'A'))));
    EXPECT_TRUE(readMetered(inElement("string", repeated("&lt;", size / 4))));
    EXPECT_FALSE(readMetered(inElement("integer", Bytes(size, '1'))));
    EXPECT_FALSE(readMetered(inElement("real", Bytes(size, '1'))));
    EXPECT_FALSE(readMetered(inElement("string", Bytes(size, '&'))));
    EXPECT_FALSE(readMetered(inElement("string", Bytes(size, '<'))));
    EXPECT_FALSE(readMetered(Bytes(size, '<')));
    EXPECT_FALSE(readMetered(repeated("<!DOCTYPE [", size / 11)));
}

TEST(HostilePropertyList, ManyXmlElementsAndALongOneCountTogether) {
    const std::size_t count = 20 * mebibyte / sizeof(PropertyListValue);
    const auto many = [](std::string_view begin, std::size_t size, std::string_view end) {
        return joined({toBytes("<array>"), repeated("<true/>", count), toBytes(begin), Bytes(size, 'A'),
                       toBytes(end), toBytes("</array>")});
    };
    const std::size_t tooLong = 4 * mebibyte;
    EXPECT_TRUE(readMetered(many("<string>", 1000, "</string>")));
    EXPECT_FALSE(readMetered(many("<string>", tooLong, "</string>")));
    EXPECT_TRUE(readMetered(many("<data>", 1000, "</data>")));
    EXPECT_FALSE(readMetered(many("<data>", tooLong, "</data>")));
}

TEST(HostilePropertyList, FilesBeyondTheSizeLimitAreNotRead) {
    Bytes file = toBytes("<true/>");
    file.resize(maximumPropertyListFileSize, ' ');
    EXPECT_TRUE(readMetered(file));
    file.push_back(' ');
    EXPECT_FALSE(readMetered(file));
}

TEST(HostilePropertyList, TruncatedFilesAreRefusedAtEveryLength) {
    const Bytes binary = writeBinaryPropertyList(samplePropertyList());
    for (std::size_t length = 0; length < binary.size(); ++length)
        EXPECT_FALSE(readPropertyList(ByteView(binary).first(length))) << length;
    const Bytes xml = toBytes("<plist><dict><key>a</key><array><string>b</string></array></dict></plist>");
    for (std::size_t length = 0; length < xml.size(); ++length)
        EXPECT_FALSE(readPropertyList(ByteView(xml).first(length))) << length;
}

TEST(HostilePropertyList, ChangedBytesDoNoHarm) {
    const Bytes good = writeBinaryPropertyList(PropertyListDictionary{
        {"list", PropertyListArray{"a", true, std::int64_t{300}, PropertyListUid{3}}}, {"text", "Grüße"}});
    for (std::size_t position = 0; position < good.size(); ++position) {
        for (unsigned value = 0; value < 256; ++value) {
            Bytes file = good;
            file[position] = static_cast<std::uint8_t>(value);
            readMetered(file);
        }
    }
}

TEST(HostilePropertyList, RandomChangesDoNoHarm) {
    std::mt19937 random(20150104);
    const std::string xml =
        "<?xml version=\"1.0\"?><!DOCTYPE plist [<!-- x -->]><plist><dict><key>a</key><array><string>b&amp;"
        "<![CDATA[c]]></string><integer>0x5</integer><date>2001-01-01T00:00:00Z</date><data>AQID</data>"
        "</array></dict></plist>";
    for (const Bytes& good : {writeBinaryPropertyList(samplePropertyList()), toBytes(xml)}) {
        for (int round = 0; round < 5'000; ++round) {
            Bytes file = good;
            const std::size_t changes = 1 + random() % 8;
            for (std::size_t change = 0; change < changes; ++change)
                file[random() % file.size()] = static_cast<std::uint8_t>(random());
            readMetered(file);
        }
    }
}

}  // namespace
}  // namespace corvane
