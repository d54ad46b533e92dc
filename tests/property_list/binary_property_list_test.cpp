#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "platform/property_list/binary_property_list_writer.h"
#include "platform/property_list/property_list_reader.h"
#include "property_list/handmade_property_list.h"
#include "property_list/sample_property_list.h"

namespace corvane {
namespace {

constexpr std::uint64_t unbelievable = std::numeric_limits<std::uint64_t>::max();

std::optional<PropertyListValue> readObject(const Bytes& object) {
    return readPropertyList(HandmadePropertyList{{object}}.bytes());
}

std::string printed(const Bytes& bytes) {
    return testing::PrintToString(bytes);
}

TEST(BinaryPropertyList, EveryTypeSurvivesWritingAndReading) {
    const PropertyListValue sample = samplePropertyList();
    EXPECT_EQ(readPropertyList(writeBinaryPropertyList(sample)), sample);
}

TEST(BinaryPropertyList, TopLevelMayBeAnyType) {
    const std::vector<PropertyListValue> values = {true,
                                                   std::int64_t{-5},
                                                   unbelievable,
                                                   2.5,
                                                   PropertyListDate{1.5},
                                                   Bytes{1, 2},
                                                   "text",
                                                   PropertyListUid{7},
                                                   PropertyListArray{},
                                                   PropertyListDictionary{}};
    for (const PropertyListValue& value : values)
        EXPECT_EQ(readPropertyList(writeBinaryPropertyList(value)), value) << value.content().index();
}

TEST(BinaryPropertyList, WidthsGrowWithTheNumberOfObjectsAndTheSize) {
    for (const std::int64_t count : {10, 255, 256, 257, 70'000}) {
        PropertyListArray numbers;
        for (std::int64_t number = 0; number < count; ++number)
            numbers.emplace_back("number " + std::to_string(number));
        const PropertyListValue value = numbers;
        EXPECT_EQ(readPropertyList(writeBinaryPropertyList(value)), value) << count;
    }
}

TEST(BinaryPropertyList, IsWrittenInTheSmallestForm) {
    const PropertyListDictionary value = {{"a", "a"}, {"b", PropertyListArray{"ü", std::int64_t{256}}}};
    const HandmadePropertyList expected{
        {{0xD2, 1, 2, 1, 3}, {0x51, 'a'}, {0x51, 'b'}, {0xA2, 4, 5}, {0x61, 0x00, 0xFC}, {0x11, 1, 0}},
        0,
        1,
        1};
    EXPECT_EQ(writeBinaryPropertyList(value), expected.bytes());
}

TEST(BinaryPropertyList, ANumberThatFitsBothKindsIsWrittenAsTheSignedOne) {
    EXPECT_EQ(writeBinaryPropertyList(std::uint64_t{256}), writeBinaryPropertyList(std::int64_t{256}));
}

TEST(BinaryPropertyList, TextThatIsNotUtf8IsWrittenWithReplacementCharacters) {
    EXPECT_EQ(readPropertyList(writeBinaryPropertyList("a\xFFz")), PropertyListValue("a\uFFFDz"));
}

struct ObjectCase {
    Bytes object;
    PropertyListValue value;
};

TEST(BinaryPropertyList, ReadsEveryLegalFormOfAnObject) {
    const Bytes sixteenBytesOfSignBits(8, 0xFF);
    const std::vector<ObjectCase> cases = {
        {{0x08}, false},
        {{0x09}, true},
        {{0x10, 0xFF}, std::int64_t{255}},
        {{0x11, 0xFF, 0xFE}, std::int64_t{65534}},
        {{0x12, 0xFF, 0xFF, 0xFF, 0xFF}, std::int64_t{4294967295}},
        {{0x13, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFE}, std::int64_t{-2}},
        {joined({{0x14}, bigEndian(5, 16)}), std::int64_t{5}},
        {joined({{0x14}, bigEndian(0, 8), bigEndian(unbelievable, 8)}), unbelievable},
        {joined({{0x14}, sixteenBytesOfSignBits, bigEndian(unbelievable, 8)}), std::int64_t{-1}},
        {joined({{0x22}, bigEndian(std::bit_cast<std::uint32_t>(0.5F), 4)}), 0.5},
        {joined({{0x23}, bigEndian(std::bit_cast<std::uint64_t>(-0.1), 8)}), -0.1},
        {joined({{0x33}, bigEndian(std::bit_cast<std::uint64_t>(1e9), 8)}), PropertyListDate{1e9}},
        {{0x42, 7, 8}, Bytes{7, 8}},
        {{0x4F, 0x10, 2, 7, 8}, Bytes{7, 8}},
        {{0x5F, 0x11, 0, 2, 'h', 'i'}, "hi"},
        {{0x62, 0xD8, 0x3D, 0xDE, 0x00}, "😀"},
        {{0x61, 0x00, 'a'}, "a"},
        {{0x61, 0xD8, 0x3D}, "\uFFFD"},
        {{0x62, 0xDE, 0x00, 0x00, 'x'}, "\uFFFDx"},
        {{0x63, 0xD8, 0x3D, 0xD8, 0x3D, 0xDE, 0x00}, "\uFFFD😀"},
        {{0x80, 9}, PropertyListUid{9}},
        {{0x82, 1, 0, 0}, PropertyListUid{65536}},
        {uidObject(unbelievable), PropertyListUid{unbelievable}},
        {{0xA0}, PropertyListArray{}},
        {{0xD0}, PropertyListDictionary{}},
    };
    for (const ObjectCase& known : cases)
        EXPECT_EQ(readObject(known.object), known.value) << printed(known.object);
}

TEST(BinaryPropertyList, RefusesMalformedObjects) {
    const std::vector<Bytes> objects = {
        {0x00},                                                        // null
        {0x07},                                                        // unknown
        {0x0F},                                                        // fill
        {0x10},                                                        // no number behind the marker
        {0x13, 0, 0, 0},                                               // number cut short
        {0x15},                                                        // 32 bytes of number
        joined({{0x14}, bigEndian(1, 8), bigEndian(0, 8)}),            // beyond 64 bits
        joined({{0x14}, bigEndian(unbelievable, 8), Bytes(8, 0)}),     // below 64 bits
        {0x21, 0, 0},                                                  // half-precision real
        {0x22, 0, 0},                                                  // real cut short
        {0x32, 0, 0, 0, 0},                                            // date of four bytes
        {0x33, 0, 0},                                                  // date cut short
        {0x43, 1, 2},                                                  // data cut short
        {0x4F},                                                        // count missing
        {0x4F, 0x11, 0},                                               // count cut short
        {0x4F, 0x23, 0, 0, 0, 0, 0, 0, 0, 0},                          // count not an integer
        {0x4F, 0x14, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0},  // count of sixteen bytes
        longObject(dataKind, unbelievable, {1}),                       // huge counts
        longObject(asciiKind, unbelievable / 2, {1}),
        longObject(0x6, unbelievable / 2 + 1, {1}),
        longObject(arrayKind, unbelievable, {0}),
        longObject(dictionaryKind, unbelievable / 2 + 1, {0}),
        {0x51, 0x80},                       // not ASCII
        {0x61, 0x00},                       // half a unit
        {0x88, 0, 0, 0, 0, 0, 0, 0, 0, 0},  // UID of nine bytes
        {0x83, 0, 0},                       // UID cut short
        {0xA1},                             // reference missing
        {0xA1, 1},                          // no such object
        {0xD1, 0},                          // value missing
        {0xC0},                             // set
        {0x70},                             // unknown kinds
        {0xB0},
        {0xFF},
    };
    for (const Bytes& object : objects)
        EXPECT_EQ(readObject(object), std::nullopt) << printed(object);
}

TEST(BinaryPropertyList, AcceptsAnyWidthOfReferencesAndOffsets) {
    for (std::size_t width = 1; width <= 8; ++width) {
        HandmadePropertyList list{{joined({{0xA1}, bigEndian(1, width)}), {0x09}}};
        list.referenceWidth = width;
        list.offsetWidth = width;
        EXPECT_EQ(readPropertyList(list.bytes()), PropertyListValue(PropertyListArray{true})) << width;
    }
}

TEST(BinaryPropertyList, AcceptsUnusedObjectsFillBytesAndAnyOrder) {
    const HandmadePropertyList list{{{0x51, 'x'}, {0x0F}, {0xA2, 0, 4}, {0x00}, {0x09}}, 2};
    EXPECT_EQ(readPropertyList(list.bytes()), PropertyListValue(PropertyListArray{"x", true}));
}

TEST(BinaryPropertyList, OfAKeyThatOccursTwiceTheFirstCounts) {
    const HandmadePropertyList list{{{0xD2, 1, 1, 2, 3}, {0x51, 'k'}, {0x09}, {0x08}}};
    EXPECT_EQ(readPropertyList(list.bytes()), PropertyListValue(PropertyListDictionary{{"k", true}}));
}

TEST(BinaryPropertyList, RefusesKeysThatAreNotTexts) {
    const HandmadePropertyList list{{{0xD1, 1, 1}, {0x09}}};
    EXPECT_EQ(readPropertyList(list.bytes()), std::nullopt);
}

TEST(BinaryPropertyList, RefusesATrailerThatDoesNotFit) {
    const Bytes good = HandmadePropertyList{{{0x09}}}.bytes();
    ASSERT_TRUE(readPropertyList(good));
    struct Change {
        std::size_t fromEnd;
        Bytes bytes;
    };
    const std::vector<Change> changes = {
        {26, {0}},                         // offset width
        {26, {9}},                         //
        {26, {255}},                       //
        {25, {0}},                         // reference width
        {25, {9}},                         //
        {24, bigEndian(0, 8)},             // object count
        {24, bigEndian(2, 8)},             //
        {24, bigEndian(unbelievable, 8)},  //
        {16, bigEndian(1, 8)},             // top object
        {16, bigEndian(unbelievable, 8)},  //
        {8, bigEndian(0, 8)},              // table of offsets
        {8, bigEndian(7, 8)},              //
        {8, bigEndian(good.size(), 8)},    //
        {8, bigEndian(unbelievable, 8)},   //
    };
    for (const Change& change : changes) {
        Bytes file = good;
        std::copy(change.bytes.begin(), change.bytes.end(), file.end() - static_cast<long>(change.fromEnd));
        EXPECT_EQ(readPropertyList(file), std::nullopt) << change.fromEnd << printed(change.bytes);
    }
}

TEST(BinaryPropertyList, RefusesOffsetsOutsideTheObjects) {
    for (const std::uint64_t offset : {std::uint64_t{0}, std::uint64_t{7}, std::uint64_t{9}, unbelievable}) {
        HandmadePropertyList list{{{0x09}}};
        list.offsetWidth = 8;
        EXPECT_EQ(readPropertyList(list.bytesWithOffsets({offset})), std::nullopt) << offset;
    }
}

TEST(BinaryPropertyList, RefusesWhatIsNoPropertyList) {
    for (const char* text : {"", "b", "bplist0", "bplist00", "bplist01", "{\"json\": true}", "\xFF\xFE<"})
        EXPECT_EQ(readPropertyList(asBytes(text)), std::nullopt) << text;
}

}  // namespace
}  // namespace corvane
