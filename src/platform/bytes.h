#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace corvane {

/// An owned byte buffer: a response body, a packed or unpacked report, a settings file.
using Bytes = std::vector<std::uint8_t>;

/// A view of bytes owned by somebody else.
using ByteView = std::span<const std::uint8_t>;

/// The same bytes seen as text; no encoding is checked.
inline std::string_view asText(ByteView bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

inline ByteView asBytes(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

inline Bytes toBytes(std::string_view text) {
    const ByteView bytes = asBytes(text);
    return {bytes.begin(), bytes.end()};
}

}  // namespace corvane
