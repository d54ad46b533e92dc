#pragma once

#include "demo_service/byte_stream.h"
#include "demo_service/openssl_pointers.h"
#include "demo_service/socket.h"

namespace corvane::demo {

/// The server's side of a TLS connection. The thread that uses it must not receive SIGPIPE.
class TlsStream final : public ByteStream {
  public:
    TlsStream(Socket socket, SSL_CTX& context);

    /// Must succeed before anything is read or written.
    bool handshake();

    std::size_t read(std::span<std::uint8_t> buffer) override;
    bool write(ByteView bytes) override;
    void close() override;
    void reset() override { socket_.reset(); }
    bool waitWhileConnected(std::optional<std::chrono::milliseconds> time) override {
        return socket_.waitWhileConnected(time);
    }

  private:
    /// Waits for what OpenSSL needs after a call that did not finish; false when the stream has ended.
    bool waitAfter(int result);

    Socket socket_;
    TlsPointer tls_;
};

}  // namespace corvane::demo
