#include <gtest/gtest.h>

#include <cstdint>
#include <random>

#include "core/itunes_account_archive.h"
#include "platform/property_list/keyed_archive.h"
#include "platform/property_list/property_list_objects.h"
#include "property_list/allocation_meter.h"
#include "property_list/handmade_property_list.h"
#include "settings/account_archive_builder.h"

namespace corvane {
namespace {

constexpr std::size_t mebibyte = std::size_t{1} << 20;
constexpr std::size_t memoryBound = 48 * mebibyte;
constexpr std::size_t allocationBound = 1'000'000;

/// Reads the archive and holds what that cost against the bounds.
std::optional<ITunesAccountList> readMetered(ByteView archive) {
    const AllocationMeter meter;
    std::optional<ITunesAccountList> accounts = unarchivedAccountList(archive);
    EXPECT_LT(meter.peakBytes(), memoryBound);
    EXPECT_LT(meter.allocationCount(), allocationBound);
    return accounts;
}

/// A list of records, each an object of its own, all of whose fields are the same text.
Bytes recordsSharingOneText(std::size_t count, std::size_t length) {
    AccountArchiveBuilder builder;
    const PropertyListUid text = builder.add(std::string(length, 'x'));
    PropertyListArray elements;
    for (std::size_t index = 0; index < count; ++index)
        elements.emplace_back(builder.add(PropertyListDictionary{
            {"vendorID", text}, {"email", text}, {"password", text}, {"name", text}, {"$class", uid(5)}}));
    builder.setElements(std::move(elements));
    return builder.bytes();
}

TEST(HostileAccountArchive, SharedTextsAreReadAsLongAsTheyFit) {
    EXPECT_TRUE(readMetered(recordsSharingOneText(100, 10'000)));
}

TEST(HostileAccountArchive, SharedTextsThatDoNotFitMakeTheArchiveUnreadableAsAWhole) {
    EXPECT_FALSE(readMetered(recordsSharingOneText(100, mebibyte)));
    EXPECT_FALSE(readMetered(recordsSharingOneText(5, mebibyte)));
    EXPECT_FALSE(readMetered(recordsSharingOneText(20'000, 1'000)));
}

TEST(HostileAccountArchive, TheTextsOfTheLastRecordMustFitAsWell) {
    const std::size_t quarter = maximumKeyedArchiveContent / 4;
    EXPECT_TRUE(readMetered(recordsSharingOneText(1, quarter - 10'000)));
    EXPECT_FALSE(readMetered(recordsSharingOneText(1, quarter)));
}

TEST(HostileAccountArchive, OneRecordMillionsOfTimesStaysBounded) {
    // $top, $objects and the rest by hand, so that the elements can be references to one and the same UID.
    const std::size_t count = 6 * mebibyte;
    const HandmadePropertyList list{{
                                        {0xD4, 1, 2, 21, 22, 3, 4, 23, 24},              // 0 the archive
                                        {0x54, '$', 't', 'o', 'p'},                      // 1
                                        {0x58, '$', 'o', 'b', 'j', 'e', 'c', 't', 's'},  // 2
                                        {0xD1, 5, 6},                                    // 3 $top
                                        {0xA5, 7, 8, 9, 10, 11},                         // 4 $objects
                                        {0x54, 'r', 'o', 'o', 't'},                      // 5
                                        {0x80, 1},                                       // 6 UID 1
                                        {0x55, '$', 'n', 'u', 'l', 'l'},                 // 7
                                        {0xD2, 12, 13, 14, 15},                          // 8 the list
                                        {0xD1, 13, 16},                                  // 9 a record
                                        {0xD1, 17, 18},  // 10 the record's class
                                        {0xD1, 17, 19},  // 11 the list's class
                                        {0x5A, 'N', 'S', '.', 'o', 'b', 'j', 'e', 'c', 't', 's'},  // 12
                                        {0x56, '$', 'c', 'l', 'a', 's', 's'},                      // 13
                                        longObject(arrayKind, count, Bytes(count, 20)),  // 14 the elements
                                        {0x80, 4},  // 15 UID of the list's class
                                        {0x80, 3},  // 16 UID of the record's class
                                        {0x5A, '$', 'c', 'l', 'a', 's', 's', 'n', 'a', 'm', 'e'},  // 17
                                        asciiObject("Corvane.ITunesAccount"),                      // 18
                                        {0x57, 'N', 'S', 'A', 'r', 'r', 'a', 'y'},                 // 19
                                        {0x80, 2},                       // 20 UID of the record
                                        asciiObject("$archiver"),        // 21
                                        asciiObject("$version"),         // 22
                                        asciiObject("NSKeyedArchiver"),  // 23
                                        {0x12, 0x00, 0x01, 0x86, 0xA0},  // 24
                                    },
                                    0,
                                    4,
                                    1};
    EXPECT_FALSE(readMetered(list.bytes()));

    HandmadePropertyList fewer = list;
    fewer.objects[14] = longObject(arrayKind, 1'000, Bytes(1'000, 20));
    const auto accounts = readMetered(fewer.bytes());
    ASSERT_TRUE(accounts);
    EXPECT_EQ(accounts->size(), 1'000U);
    EXPECT_EQ(accounts->front(), accounts->back());
}

TEST(HostileAccountArchive, LoopsAndDeepNestingAreNeverEntered) {
    AccountArchiveBuilder looping;
    looping.setField("name", uid(AccountArchiveBuilder::record));
    looping.setField("email", uid(AccountArchiveBuilder::list));
    looping.at(AccountArchiveBuilder::recordClass).insert_or_assign("$class", uid(5));
    EXPECT_TRUE(readMetered(looping.bytes()));

    std::string xml =
        "<dict><key>$archiver</key><string>NSKeyedArchiver</string><key>$version</key>"
        "<integer>100000</integer><key>$top</key><dict><key>root</key><dict><key>CF$UID</key><integer>0</"
        "integer></dict>"
        "</dict><key>$objects</key><array>";
    for (int depth = 0; depth < 100'000; ++depth)
        xml += "<array>";
    for (int depth = 0; depth < 100'000; ++depth)
        xml += "</array>";
    EXPECT_FALSE(readMetered(asBytes(xml + "</array></dict>")));
}

TEST(HostileAccountArchive, DictionariesOfManyKeysAreNotSearchedForEver) {
    AccountArchiveBuilder builder;
    for (int index = 0; index < 50'000; ++index)
        builder.at(AccountArchiveBuilder::recordClass).emplace(" " + std::to_string(index), true);
    const PropertyListValue account = PropertyListDictionary{{"$class", uid(5)}};
    PropertyListArray elements;
    for (int index = 0; index < 10'000; ++index)
        elements.emplace_back(builder.add(account));
    builder.setElements(std::move(elements));
    EXPECT_FALSE(readMetered(builder.bytes()));
}

TEST(HostileAccountArchive, IsIgnoredWhenTruncatedAtAnyLength) {
    const Bytes archive = AccountArchiveBuilder().bytes();
    for (std::size_t length = 0; length < archive.size(); ++length)
        EXPECT_FALSE(readMetered(ByteView(archive).first(length))) << length;
}

TEST(HostileAccountArchive, ChangedBytesDoNoHarm) {
    const Bytes good = AccountArchiveBuilder().bytes();
    for (std::size_t position = 0; position < good.size(); ++position) {
        for (unsigned value = 0; value < 256; ++value) {
            Bytes archive = good;
            archive[position] = static_cast<std::uint8_t>(value);
            readMetered(archive);
        }
    }
}

TEST(HostileAccountArchive, RandomChangesDoNoHarm) {
    std::mt19937 random(4711);
    const Bytes good = AccountArchiveBuilder().bytes();
    for (int round = 0; round < 20'000; ++round) {
        Bytes archive = good;
        const std::size_t changes = 2 + random() % 8;
        for (std::size_t change = 0; change < changes; ++change)
            archive[random() % archive.size()] = static_cast<std::uint8_t>(random());
        readMetered(archive);
    }
}

}  // namespace
}  // namespace corvane
