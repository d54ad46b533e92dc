#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <span>

#include "platform/bytes.h"

namespace corvane::demo {

/// One connection as a stream of bytes, with or without TLS. Used by one thread.
class ByteStream {
  public:
    virtual ~ByteStream() = default;

    /// Reads what there is, waiting for at least one byte. 0 when the stream has ended for whatever reason.
    virtual std::size_t read(std::span<std::uint8_t> buffer) = 0;

    /// Writes everything; false when the other side is gone or the service ends.
    virtual bool write(ByteView bytes) = 0;

    /// Says farewell in order and closes.
    virtual void close() = 0;

    /// Closes with a reset.
    virtual void reset() = 0;

    /// Waits until the time has passed (absent: no limit), the other side is gone or the service ends; true
    /// when the time has passed.
    virtual bool waitWhileConnected(std::optional<std::chrono::milliseconds> time) = 0;
};

}  // namespace corvane::demo
