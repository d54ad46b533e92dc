// Settings files that were damaged, or made to do damage: reading one never crashes, stays within 64 MB and
// 0.1 s, and an unreadable file is kept.

#include <gtest/gtest.h>

#include <ctime>
#include <random>

#include "core/itunes_account_archive.h"
#include "platform/memory/in_memory_log.h"
#include "platform/memory/manual_clock.h"
#include "platform/property_list/binary_property_list_writer.h"
#include "platform/property_list/property_list_reader.h"
#include "platform/system/property_list_file_store.h"
#include "property_list/allocation_meter.h"
#include "property_list/handmade_property_list.h"
#include "reliability/rounds.h"
#include "settings/settings_manger.h"
#include "support/sanitizers.h"
#include "support/temporary_folder.h"

namespace corvane::test {
namespace {

constexpr std::size_t memoryLimit = std::size_t{64} << 20;
constexpr double secondsLimit() {
    if (isSanitized)
        return 5.0;
#ifdef __OPTIMIZE__
    return 0.1;
#else
    return 1.5;  // a build for debugging
#endif
}

/// Of this thread, so that what else the machine does makes no difference.
double cpuSeconds() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

Bytes goodFile() {
    ITunesAccountList accounts;
    for (int number = 0; number < 3; ++number) {
        accounts.push_back(
            std::make_shared<ITunesAccount>(std::to_string(4711 + number), "Käufe \xF0\x9F\x98\x80"));
        accounts.back()->setEmail("user@example.com");
        accounts.back()->setPassword("p&ss w%rd");
    }
    PropertyListArray keys;
    for (int day = 1; day < 29; ++day)
        keys.emplace_back(std::to_string(20150100 + day));
    return writeBinaryPropertyList(
        PropertyListDictionary{{"settingsKeyItunesAccounts", archivedAccountList(accounts)},
                               {"settingsKeyReportsDownloadedCache", keys},
                               {"NSWindow Frame settings", "196 240 480 270"},
                               {"number", std::int64_t{-5}},
                               {"real", 1.5}});
}

Bytes goodXmlFile() {
    return toBytes(
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>"
        "<key>settingsKeyReportsDownloadedCache</key><array><string>20150104</string><string>2015</string></"
        "array>"
        "<key>settingsKeyItunesAccounts</key><data>YnBsaXN0MDDUAQIDBAUG</data><key>n</key><integer>-0x1F</"
        "integer>"
        "<key>d</key><date>2015-01-04T00:00:00Z</date><key>r</key><real>1e3</real><key>t</key><true/>"
        "<key>a</key><dict><key>&amp;</key><string><![CDATA[x]]></string></dict></dict></plist>");
}

/// Up to eight changes: bytes replaced, taken out, put in or doubled, and now and then the end cut off.
Bytes mutantOf(Bytes file, std::mt19937& random) {
    const auto below = [&random](std::size_t limit) {
        return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random);
    };
    for (std::size_t changes = 1 + below(8); changes > 0 && !file.empty(); --changes) {
        const auto place = file.begin() + static_cast<std::ptrdiff_t>(below(file.size()));
        switch (below(6)) {
            case 0:
                file.erase(place);
                break;
            case 1:
                file.insert(place, static_cast<std::uint8_t>(below(256)));
                break;
            case 2:
                file.resize(below(file.size()) + 1);
                break;
            case 3:
                *place = below(2) == 0 ? 0xFF : 0x00;
                break;
            default:
                *place = static_cast<std::uint8_t>(below(256));
        }
    }
    return file;
}

class SettingsMutantsTest : public testing::Test {
  protected:
    /// Reads the file as a start of the program does.
    void readAsSettings(const Bytes& content) {
        const std::string aside = file_.native() + ".unreadable-19700101T000000Z";
        std::filesystem::remove(aside);
        writeFile(file_, asText(content));
        const double start = cpuSeconds();
        std::size_t peak = 0;
        {
            const AllocationMeter meter;
            PropertyListFileStore store(file_, log_, clock_);
            const SettingsManger settings(store);
            peak = meter.peakBytes();
        }
        const double seconds = cpuSeconds() - start;
        worstSeconds_ = std::max(worstSeconds_, seconds);
        worstPeak_ = std::max(worstPeak_, peak);
        EXPECT_LT(peak, memoryLimit);
        EXPECT_LT(seconds, secondsLimit());
        const auto value = readPropertyList(content);
        if (value && value->get<PropertyListDictionary>() != nullptr)
            return;
        ++unreadable_;
        EXPECT_EQ(readFile(aside), asText(content)) << "not kept aside";
    }

    void report(const char* what, int count) const {
        std::printf("%d %s: %d unreadable and kept aside, at most %zu KiB and %.4f s\n", count, what,
                    unreadable_, worstPeak_ / 1024, worstSeconds_);
    }

    TemporaryFolder folder_;
    std::filesystem::path file_ = folder_.path() / "config/settings.plist";
    InMemoryLog log_;
    ManualClock clock_;
    int unreadable_ = 0;
    double worstSeconds_ = 0;
    std::size_t worstPeak_ = 0;
};

TEST_F(SettingsMutantsTest, MutantsOfGoodFiles) {
    const Bytes seeds[] = {goodFile(), goodXmlFile()};
    std::mt19937 random(3);
    const int count = rounds(2'000, 100'000);
    for (int round = 0; round < count && !HasFailure(); ++round) {
        SCOPED_TRACE(round);
        readAsSettings(mutantOf(seeds[round % 2], random));
    }
    report("mutants", count);
    EXPECT_GT(unreadable_, 0);
    EXPECT_LT(unreadable_, count);
}

TEST_F(SettingsMutantsTest, HostileFiles) {
    // Arrays in arrays, each referring to the next.
    HandmadePropertyList deep;
    deep.referenceWidth = 4;
    deep.offsetWidth = 4;
    constexpr std::size_t depth = 100'000;
    for (std::size_t index = 1; index < depth; ++index)
        deep.objects.push_back(joined({{0xA1}, bigEndian(index, 4)}));
    deep.objects.push_back({0xA0});
    // Each array refers to the next one fifteen times.
    HandmadePropertyList shared;
    constexpr std::uint8_t levels = 30;
    for (std::uint8_t level = 1; level <= levels; ++level)
        shared.objects.push_back(joined({{0xAE}, Bytes(14, level)}));
    shared.objects.push_back(asciiObject("end"));
    HandmadePropertyList loop;
    loop.objects = {{0xA1, 0x00}};
    const auto withCount = [](unsigned kind, std::uint64_t count) {
        HandmadePropertyList list;
        list.objects = {longObject(kind, count, Bytes(16, 0))};
        return list.bytes();
    };
    std::string nestedXml = "<plist>";
    for (std::size_t index = 0; index < depth; ++index)
        nestedXml += "<array>";
    std::string manyElements = "<plist><dict><key>a</key><array>";
    for (std::size_t index = 0; index < depth * 10; ++index)
        manyElements += "<true/>";
    std::string entities =
        "<!DOCTYPE plist [<!ENTITY a \"aaaaaaaaaa\"><!ENTITY b \"&a;&a;&a;&a;&a;&a;\">]><plist><string>";
    for (int index = 0; index < 1000; ++index)
        entities += "&b;";
    const Bytes hostile[] = {deep.bytes(),
                             shared.bytes(),
                             loop.bytes(),
                             withCount(arrayKind, UINT64_MAX),
                             withCount(dictionaryKind, UINT64_MAX / 2),
                             withCount(dataKind, std::uint64_t{1} << 40U),
                             withCount(asciiKind, std::uint64_t{1} << 62U),
                             toBytes(nestedXml),
                             toBytes(manyElements),
                             toBytes(entities),
                             Bytes(1 << 20, 0),
                             toBytes("bplist00"),
                             Bytes{}};
    for (const Bytes& file : hostile)
        readAsSettings(file);
    // The same as the accounts within a file that is in order.
    for (const Bytes& archive : hostile)
        readAsSettings(
            writeBinaryPropertyList(PropertyListDictionary{{"settingsKeyItunesAccounts", archive}}));
    report("hostile files", static_cast<int>(2 * std::size(hostile)));
}

}  // namespace
}  // namespace corvane::test
