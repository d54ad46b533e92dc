#pragma once

#include "demo_service/byte_stream.h"
#include "demo_service/socket.h"

namespace corvane::demo {

/// A connection without TLS.
class PlainStream final : public ByteStream {
  public:
    explicit PlainStream(Socket socket);

    std::size_t read(std::span<std::uint8_t> buffer) override;
    bool write(ByteView bytes) override;
    void close() override { socket_.close(); }
    void reset() override { socket_.reset(); }
    bool waitWhileConnected(std::optional<std::chrono::milliseconds> time) override {
        return socket_.waitWhileConnected(time);
    }

  private:
    Socket socket_;
};

}  // namespace corvane::demo
