#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/bytes.h"

namespace corvane {

/// A binary property list put together byte by byte, for what no writer would write.
struct HandmadePropertyList {
    std::vector<Bytes> objects;
    std::uint64_t top = 0;
    std::size_t offsetWidth = 2;
    std::size_t referenceWidth = 1;

    /// With the objects one after the other.
    Bytes bytes() const;
    /// With `offsets` for the table of offsets instead of where the objects stand.
    Bytes bytesWithOffsets(const std::vector<std::uint64_t>& offsets) const;
};

/// A number in the order of the format, the highest byte first.
Bytes bigEndian(std::uint64_t value, std::size_t width);

Bytes joined(const std::vector<Bytes>& parts);

/// An object whose content is `count` bytes, characters or references, with its count behind the marker.
Bytes longObject(unsigned kind, std::uint64_t count, const Bytes& content);

inline constexpr unsigned arrayKind = 0xA;
inline constexpr unsigned dictionaryKind = 0xD;
inline constexpr unsigned dataKind = 0x4;
inline constexpr unsigned asciiKind = 0x5;
inline constexpr unsigned utf16Kind = 0x6;

Bytes asciiObject(std::string_view text);
Bytes uidObject(std::uint64_t uid);

}  // namespace corvane
