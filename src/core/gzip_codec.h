#pragma once

#include <cstddef>
#include <optional>

#include "platform/bytes.h"

/// Packing and unpacking in the gzip format (RFC 1952). Any thread.
namespace corvane {

/// True when the buffer starts with the two magic bytes of gzip; nothing else is looked at.
bool isGzippedData(ByteView data);

/// Packs the data; empty or already packed data comes back unchanged. A level is a fraction from 0 (store) to
/// 1 (best), a negative one the library's default. Absent when zlib refuses the level.
std::optional<Bytes> gzippedDataWithCompressionLevel(Bytes data, float level);
std::optional<Bytes> gzippedData(Bytes data);

/// The longest unpacked form.
inline constexpr std::size_t maximumUnpackedSize = std::size_t{512} * 1024 * 1024;

/// Unpacks the first member; empty data, or data that is not gzip, comes back unchanged. A broken stream
/// comes back as far as it was unpacked, followed by the zero bytes of the room that was made for more.
/// Absent when zlib cannot be set up, or when the result would be longer than `maximumSize`, which can only
/// lower the limit above.
std::optional<Bytes> gunzippedData(Bytes data, std::size_t maximumSize = maximumUnpackedSize);

}  // namespace corvane
