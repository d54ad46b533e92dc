#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "demo_service/byte_stream.h"
#include "demo_service/request_log.h"

namespace corvane::demo {

/// Reads HTTP/1.1 requests from a connection, one after the other.
class RequestReader {
  public:
    /// `countBytes` is told of every piece that arrives.
    RequestReader(ByteStream& stream, std::function<void(std::size_t)> countBytes);

    /// The next complete request; absent when the stream ends before, or when what comes is no request with
    /// a head of at most 64 KiB and a body of at most 1 MiB.
    std::optional<ReceivedRequest> next();

  private:
    bool readMore();
    std::optional<ReceivedRequest> readHead();
    bool readBody(ReceivedRequest& request);

    ByteStream& stream_;
    std::function<void(std::size_t)> countBytes_;
    std::string buffer_;
};

/// The value of the first header of that name, in any letter case; absent when there is none.
std::optional<std::string> headerOf(const ReceivedRequest& request, std::string_view name);

}  // namespace corvane::demo
