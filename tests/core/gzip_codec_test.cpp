#include "core/gzip_codec.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <algorithm>
#include <limits>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace corvane {
namespace {

// Rows as in a report: repetitive, with some digits that are not.
Bytes reportOf(std::size_t size) {
    std::mt19937 random(4711);
    std::string text;
    while (text.size() < size)
        text += "APPLE\tUS\tSKU" + std::to_string(random() % 1000) + "\tTitle of an app\t" +
                std::to_string(random()) + "\t01/04/2015\n";
    text.resize(size);
    return toBytes(text);
}

Bytes noiseOf(std::size_t size) {
    std::mt19937 random(42);
    Bytes bytes(size);
    for (std::uint8_t& byte : bytes)
        byte = static_cast<std::uint8_t>(random());
    return bytes;
}

// One whole run of zlib into a buffer that is large enough.
Bytes packedByZlib(Bytes data, int level) {
    z_stream stream{};
    EXPECT_EQ(deflateInit2(&stream, level, Z_DEFLATED, 31, 8, Z_DEFAULT_STRATEGY), Z_OK);
    Bytes packed(deflateBound(&stream, data.size()) + 64);
    stream.next_in = data.data();
    stream.avail_in = static_cast<uInt>(data.size());
    stream.next_out = packed.data();
    stream.avail_out = static_cast<uInt>(packed.size());
    EXPECT_EQ(::deflate(&stream, Z_FINISH), Z_STREAM_END);
    packed.resize(stream.total_out);
    deflateEnd(&stream);
    return packed;
}

// The unpacking rule step by step: a buffer that grows by half the input whenever it is full, cut to length
// only at a proper end.
Bytes unpackedByTheRule(Bytes packed) {
    z_stream stream{};
    EXPECT_EQ(inflateInit2(&stream, 47), Z_OK);
    stream.next_in = packed.data();
    stream.avail_in = static_cast<uInt>(packed.size());
    Bytes unpacked;
    int status = Z_OK;
    while (status == Z_OK) {
        if (stream.total_out >= unpacked.size())
            unpacked.resize(unpacked.size() + packed.size() / 2);
        stream.next_out = unpacked.data() + stream.total_out;
        stream.avail_out = static_cast<uInt>(unpacked.size() - stream.total_out);
        status = ::inflate(&stream, Z_SYNC_FLUSH);
    }
    const std::size_t written = stream.total_out;
    if (inflateEnd(&stream) == Z_OK && status == Z_STREAM_END)
        unpacked.resize(written);
    return unpacked;
}

TEST(GzipCodec, KnowsGzipByItsTwoMagicBytes) {
    struct Row {
        Bytes data;
        bool isGzip;
    };
    const Row rows[] = {
        {{}, false},
        {{0x1F}, false},
        {{0x8B}, false},
        {{0x1F, 0x8C}, false},
        {{0x8B, 0x1F}, false},
        {{0x1E, 0x8B}, false},
        {{0x1F, 0x8B}, true},
        {{0x1F, 0x8B, 0x00}, true},
        {{0x78, 0x9C, 0x03, 0x00}, false},
    };
    for (const Row& row : rows)
        EXPECT_EQ(isGzippedData(row.data), row.isGzip) << testing::PrintToString(row.data);
}

TEST(GzipCodec, PassesEmptyDataThrough) {
    EXPECT_EQ(gzippedData({}), Bytes{});
    EXPECT_EQ(gzippedDataWithCompressionLevel({}, 2.0F), Bytes{});
    EXPECT_EQ(gunzippedData({}), Bytes{});
}

TEST(GzipCodec, PacksNoGzipTwice) {
    const Bytes broken = {0x1F, 0x8B, 'n', 'o', 't', ' ', 'i', 't'};
    EXPECT_EQ(gzippedData(broken), broken);
    EXPECT_EQ(gzippedDataWithCompressionLevel(broken, 2.0F), broken);
}

TEST(GzipCodec, UnpacksNothingThatIsNotGzip) {
    for (const Bytes& data :
         {toBytes("plain text"), Bytes{0x1F}, Bytes{0x1F, 0x8C, 0x08}, Bytes{0x78, 0x9C, 0x03, 0x00}})
        EXPECT_EQ(gunzippedData(data), data);
    EXPECT_EQ(gunzippedData(toBytes("longer than the limit"), 3), toBytes("longer than the limit"));
}

TEST(GzipCodec, PacksAsZlibDoesAtEachLevel) {
    struct Row {
        float level;
        std::optional<int> zlibLevel;  // absent: refused
    };
    constexpr float infinity = std::numeric_limits<float>::infinity();
    const Row rows[] = {
        {-1.0F, -1},
        {-0.001F, -1},
        {-infinity, -1},
        {0.0F, 0},
        {-0.0F, 0},
        {0.05F, 0},
        {0.06F, 1},
        {0.1F, 1},
        {0.25F, 2},
        {0.5F, 5},
        {0.75F, 7},
        {0.9F, 8},
        {0.95F, 9},
        {1.0F, 9},
        {1.05F, 9},
        {1.06F, std::nullopt},
        {2.0F, std::nullopt},
        {1e30F, std::nullopt},
        {infinity, std::nullopt},
        {std::numeric_limits<float>::quiet_NaN(), std::nullopt},
    };
    const Bytes report = reportOf(60000);
    for (const Row& row : rows) {
        SCOPED_TRACE(row.level);
        const std::optional<Bytes> packed = gzippedDataWithCompressionLevel(report, row.level);
        ASSERT_EQ(packed.has_value(), row.zlibLevel.has_value());
        if (!packed)
            continue;
        EXPECT_TRUE(packed == packedByZlib(report, *row.zlibLevel));
        EXPECT_TRUE(gunzippedData(*packed) == report);
    }
}

TEST(GzipCodec, ReturnsWhatWasPacked) {
    for (const std::size_t size :
         {1U, 2U, 3U, 100U, 5000U, 16384U, 65536U, 1048575U, 1048576U, 1048577U, 3000000U}) {
        for (const Bytes& data : {reportOf(size), noiseOf(size), Bytes(size, 0)}) {
            const std::optional<Bytes> packed = gzippedData(data);
            ASSERT_TRUE(packed) << size;
            EXPECT_TRUE(*packed == packedByZlib(data, Z_DEFAULT_COMPRESSION)) << size;
            EXPECT_TRUE(gunzippedData(*packed) == data) << size;
        }
    }
}

TEST(GzipCodec, UnpacksAnEmptyMember) {
    EXPECT_EQ(gunzippedData(packedByZlib({}, 6)), Bytes{});
}

TEST(GzipCodec, IgnoresWhatFollowsTheFirstMember) {
    const Bytes first = reportOf(5000);
    for (const Bytes& second :
         {packedByZlib(reportOf(100000), 6), toBytes("x"), Bytes(3, 0), Bytes(1000, 0xFF)}) {
        Bytes file = packedByZlib(first, 6);
        file.insert(file.end(), second.begin(), second.end());
        EXPECT_TRUE(gunzippedData(file) == first) << second.size();
    }
}

TEST(GzipCodec, KeepsTheGrownLengthOfAFileCutOffAnywhere) {
    for (const Bytes& report : {reportOf(300), reportOf(20000), noiseOf(500)}) {
        const Bytes packed = packedByZlib(report, 6);
        for (std::size_t length = 2; length < packed.size(); ++length) {
            const Bytes cut(packed.begin(), packed.begin() + static_cast<std::ptrdiff_t>(length));
            const std::optional<Bytes> unpacked = gunzippedData(cut);
            ASSERT_TRUE(unpacked && *unpacked == unpackedByTheRule(cut)) << length << " of " << packed.size();
            ASSERT_EQ(unpacked->size() % (length / 2), 0U);
        }
    }
}

TEST(GzipCodec, FillsTheRoomBehindABrokenReportWithZeros) {
    const Bytes report = reportOf(5000);
    Bytes packed = packedByZlib(report, 6);
    packed[packed.size() - 8] ^= 1U;  // the checksum
    const std::size_t step = packed.size() / 2;
    const std::optional<Bytes> unpacked = gunzippedData(packed);
    ASSERT_TRUE(unpacked);
    ASSERT_EQ(unpacked->size(), (report.size() + step - 1) / step * step);
    ASSERT_GT(unpacked->size(), report.size());
    const auto end = unpacked->begin() + static_cast<std::ptrdiff_t>(report.size());
    EXPECT_TRUE(std::equal(unpacked->begin(), end, report.begin(), report.end()));
    EXPECT_TRUE(std::all_of(end, unpacked->end(), [](std::uint8_t byte) { return byte == 0; }));
}

TEST(GzipCodec, TreatsAWrongLengthInTheTrailerAsBroken) {
    const Bytes report = reportOf(5000);
    for (const std::size_t position : {1U, 2U, 3U, 4U}) {
        Bytes packed = packedByZlib(report, 6);
        packed[packed.size() - position] ^= 0x41U;
        EXPECT_TRUE(gunzippedData(packed) == unpackedByTheRule(packed)) << position;
    }
}

TEST(GzipCodec, FollowsTheRuleForEveryFlippedByte) {
    const Bytes packed = packedByZlib(reportOf(2000), 6);
    for (std::size_t position = 2; position < packed.size(); ++position) {
        for (const unsigned flip : {0x01U, 0x80U, 0xFFU}) {
            Bytes broken = packed;
            broken[position] = static_cast<std::uint8_t>(broken[position] ^ flip);
            ASSERT_TRUE(gunzippedData(broken) == unpackedByTheRule(broken)) << position << " ^ " << flip;
        }
    }
}

TEST(GzipCodec, FollowsTheRuleForRubbishBehindTheMagic) {
    const Bytes rubbish = noiseOf(64);
    for (std::size_t length = 0; length <= rubbish.size(); ++length) {
        Bytes data = {0x1F, 0x8B};
        data.insert(data.end(), rubbish.begin(), rubbish.begin() + static_cast<std::ptrdiff_t>(length));
        EXPECT_EQ(gunzippedData(data), unpackedByTheRule(data)) << length;
    }
}

TEST(GzipCodec, UnpacksHeadersWithNamesAndComments) {
    const Bytes report = reportOf(1000);
    const Bytes packed = packedByZlib(report, 6);
    Bytes named(packed.begin(), packed.begin() + 10);
    named[3] = 0x08 | 0x10;
    for (const char character : std::string("name\0a comment\0", 15))
        named.push_back(static_cast<std::uint8_t>(character));
    named.insert(named.end(), packed.begin() + 10, packed.end());
    EXPECT_TRUE(gunzippedData(named) == report);
}

TEST(GzipCodec, GivesUpBeyondTheLimit) {
    const Bytes report(100000, 'x');
    const Bytes packed = packedByZlib(report, 9);
    EXPECT_TRUE(gunzippedData(packed, report.size()) == report);
    EXPECT_EQ(gunzippedData(packed, report.size() - 1), std::nullopt);
    EXPECT_EQ(gunzippedData(packed, 0), std::nullopt);
    EXPECT_TRUE(gunzippedData(packed, std::numeric_limits<std::size_t>::max()) == report);
}

TEST(GzipCodec, GivesUpWhereTheRoomOfABrokenReportPassesTheLimit) {
    Bytes packed = packedByZlib(reportOf(5000), 6);
    packed.back() ^= 1U;
    const std::size_t grownSize = unpackedByTheRule(packed).size();
    EXPECT_TRUE(gunzippedData(packed, grownSize) == unpackedByTheRule(packed));
    EXPECT_EQ(gunzippedData(packed, grownSize - 1), std::nullopt);
}

TEST(GzipCodec, DoesNotBelieveTheAnnouncedSize) {
    const Bytes report = reportOf(5000);
    // As a second member's last bytes: 4 GiB, and nothing.
    for (const std::uint8_t byte : {std::uint8_t{0xFF}, std::uint8_t{0x00}}) {
        Bytes file = packedByZlib(report, 6);
        file.insert(file.end(), 4, byte);
        const std::optional<Bytes> unpacked = gunzippedData(file);
        EXPECT_TRUE(unpacked == report);
        EXPECT_LE(unpacked->capacity(), 2U * 1024 * 1024);
    }
}

TEST(GzipCodec, TakesNoMoreRoomThanTheReportNeeds) {
    const Bytes report = reportOf(1000000);
    const std::optional<Bytes> unpacked = gunzippedData(packedByZlib(report, 6));
    ASSERT_TRUE(unpacked);
    EXPECT_EQ(unpacked->capacity(), report.size());
}

}  // namespace
}  // namespace corvane
