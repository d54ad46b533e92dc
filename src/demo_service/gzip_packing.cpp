#include "demo_service/gzip_packing.h"

#include <zlib.h>

#include "platform/fatal_error.h"

namespace corvane::demo {

namespace {

constexpr int kGzipWindowBits = 15 + 16;
constexpr int kDefaultMemoryLevel = 8;

}  // namespace

Bytes gzipPacked(std::string_view text) {
    z_stream stream{};
    if (deflateInit2(&stream, Z_BEST_SPEED, Z_DEFLATED, kGzipWindowBits, kDefaultMemoryLevel,
                     Z_DEFAULT_STRATEGY) != Z_OK) {
        fatalError("the demo service cannot pack a report: out of memory");
    }
    Bytes packed(deflateBound(&stream, text.size()));
    // zlib's interface lacks the const; it only reads the input.
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
    stream.avail_in = static_cast<uInt>(text.size());
    stream.next_out = packed.data();
    stream.avail_out = static_cast<uInt>(packed.size());
    const int result = deflate(&stream, Z_FINISH);
    packed.resize(stream.total_out);
    deflateEnd(&stream);
    if (result != Z_STREAM_END) {
        fatalError("the demo service cannot pack a report: it is larger than 4 GiB");
    }
    return packed;
}

}  // namespace corvane::demo
