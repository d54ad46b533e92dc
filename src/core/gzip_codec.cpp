#include "core/gzip_codec.h"

#include <zlib.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <utility>

namespace corvane {

namespace {

constexpr int gzipWindowBits = 15 + 16;
constexpr int detectingWindowBits = 15 + 32;  // gzip or zlib header
constexpr int deflateMemoryLevel = 8;
constexpr std::size_t packedGrowth = 16384;
constexpr std::size_t unpackedGrowth = std::size_t{1024} * 1024;

// A deflated byte stands for at most this many unpacked ones.
constexpr std::size_t maximumExpansion = 1032;

// zlib counts the bytes at hand in 32 bits.
bool fitsCounter(std::size_t size) {
    return size <= std::numeric_limits<uInt>::max();
}

// zlib reads through a pointer to non-const unless ZLIB_CONST is set, and never writes there.
Bytef* inputPointer(ByteView data) {
    return const_cast<Bytef*>(data.data());
}

// Absent for what zlib would refuse, much of which is no int at all.
std::optional<int> zlibLevelOf(float level) {
    if (level < 0)
        return Z_DEFAULT_COMPRESSION;
    const float rounded = std::round(level * Z_BEST_COMPRESSION);
    if (!(rounded <= Z_BEST_COMPRESSION))
        return std::nullopt;
    return static_cast<int>(rounded);
}

class InflateStream {
  public:
    explicit InflateStream(ByteView packed) {
        stream_.next_in = inputPointer(packed);
        stream_.avail_in = static_cast<uInt>(packed.size());
        isReady_ = inflateInit2(&stream_, detectingWindowBits) == Z_OK;
    }
    ~InflateStream() { end(); }
    InflateStream(const InflateStream&) = delete;
    InflateStream& operator=(const InflateStream&) = delete;

    bool isReady() const { return isReady_; }
    std::size_t totalOut() const { return stream_.total_out; }
    std::size_t unusedRoom() const { return stream_.avail_out; }

    // Unpacks into what the buffer has beyond the bytes written so far.
    int inflateInto(Bytes& buffer, int flush) {
        stream_.next_out = buffer.data() + stream_.total_out;
        stream_.avail_out = static_cast<uInt>(buffer.size() - stream_.total_out);
        return ::inflate(&stream_, flush);
    }

    // True when zlib finds the stream in order.
    bool end() { return std::exchange(isReady_, false) && ::inflateEnd(&stream_) == Z_OK; }

  private:
    z_stream stream_{};
    bool isReady_ = false;
};

// What the last four bytes of a gzip file say about its unpacked size. Nothing guarantees it.
std::size_t announcedSize(ByteView packed) {
    if (packed.size() < 4)
        return 0;
    const ByteView trailer = packed.last(4);
    return trailer[0] | std::size_t{trailer[1]} << 8U | std::size_t{trailer[2]} << 16U |
           std::size_t{trailer[3]} << 24U;
}

enum class Unpacking { Complete, Broken, TooLong, Unavailable };

// Unpacks a stream that is whole. The buffer is as long as the report where the file says so truly, which is
// always, so that neither room nor time is wasted.
Unpacking unpackWhole(ByteView packed, std::size_t maximumSize, Bytes& unpacked) {
    InflateStream stream(packed);
    if (!stream.isReady())
        return Unpacking::Unavailable;
    // One byte more than allowed tells a report that is too long from one that just fits.
    const std::size_t limit = maximumSize + 1;
    const std::size_t expected =
        std::clamp<std::size_t>(announcedSize(packed), 1, std::min(limit, packed.size() * maximumExpansion));
    unpacked.reserve(expected);
    int status = Z_OK;
    do {
        // Step by step, so that a large announced size takes no memory before there is something to fill it.
        const std::size_t goal = unpacked.size() < expected ? expected : limit;
        unpacked.resize(std::min(goal, unpacked.size() + unpackedGrowth));
        status = stream.inflateInto(unpacked, Z_FINISH);
        if (stream.totalOut() > maximumSize)
            return Unpacking::TooLong;
    } while ((status == Z_OK || status == Z_BUF_ERROR) && stream.unusedRoom() == 0);
    unpacked.resize(stream.totalOut());
    return status == Z_STREAM_END && stream.end() ? Unpacking::Complete : Unpacking::Broken;
}

// Unpacks a stream that is known to be broken. How much room follows the bytes that came out is part of the
// result, and depends on the steps in which the buffer grows.
std::optional<Bytes> unpackBroken(ByteView packed, std::size_t maximumSize) {
    InflateStream stream(packed);
    if (!stream.isReady())
        return std::nullopt;
    Bytes unpacked;
    int status = Z_OK;
    // This ends: zlib says Z_OK only when it has read or written something, and both are limited.
    do {
        if (stream.totalOut() >= unpacked.size()) {
            const std::size_t grownSize = unpacked.size() + packed.size() / 2;
            if (grownSize > maximumSize)
                return std::nullopt;
            unpacked.resize(grownSize);
        }
        status = stream.inflateInto(unpacked, Z_SYNC_FLUSH);
    } while (status == Z_OK);
    return unpacked;
}

}  // namespace

bool isGzippedData(ByteView data) {
    return data.size() >= 2 && data[0] == 0x1F && data[1] == 0x8B;
}

std::optional<Bytes> gzippedDataWithCompressionLevel(Bytes data, float level) {
    if (data.empty() || isGzippedData(data))
        return data;
    if (!fitsCounter(data.size()))
        return std::nullopt;
    const std::optional<int> zlibLevel = zlibLevelOf(level);
    if (!zlibLevel)
        return std::nullopt;

    z_stream stream{};
    stream.next_in = inputPointer(data);
    stream.avail_in = static_cast<uInt>(data.size());
    if (deflateInit2(&stream, *zlibLevel, Z_DEFLATED, gzipWindowBits, deflateMemoryLevel,
                     Z_DEFAULT_STRATEGY) != Z_OK)
        return std::nullopt;
    Bytes packed(packedGrowth);
    do {
        if (stream.total_out >= packed.size())
            packed.resize(packed.size() + packedGrowth);
        stream.next_out = packed.data() + stream.total_out;
        stream.avail_out = static_cast<uInt>(packed.size() - stream.total_out);
        ::deflate(&stream, Z_FINISH);
    } while (stream.avail_out == 0);
    packed.resize(stream.total_out);
    ::deflateEnd(&stream);
    return packed;
}

std::optional<Bytes> gzippedData(Bytes data) {
    return gzippedDataWithCompressionLevel(std::move(data), -1.0F);
}

std::optional<Bytes> gunzippedData(Bytes data, std::size_t maximumSize) {
    if (data.empty() || !isGzippedData(data))
        return data;
    if (!fitsCounter(data.size()))
        return std::nullopt;
    maximumSize = std::min(maximumSize, maximumUnpackedSize);
    Bytes unpacked;
    switch (unpackWhole(data, maximumSize, unpacked)) {
        case Unpacking::Complete:
            return unpacked;
        case Unpacking::Broken:
            unpacked = Bytes{};  // not two results in memory at once
            return unpackBroken(data, maximumSize);
        case Unpacking::TooLong:
        case Unpacking::Unavailable:
            break;
    }
    return std::nullopt;
}

}  // namespace corvane
