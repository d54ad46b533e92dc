#pragma once

#include <openssl/ssl.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "platform/test_certificates.h"

namespace corvane::test {

/// One accepted connection, seen from the server. Everything returns or fails at once when the server ends.
class ServerConnection {
  public:
    ServerConnection(int socket, SSL* tls, std::atomic<std::size_t>& receivedBytes);
    ~ServerConnection();

    ServerConnection(const ServerConnection&) = delete;
    ServerConnection& operator=(const ServerConnection&) = delete;

    /// The next request as it stands on the wire, its body included; absent when the client is gone.
    std::optional<std::string> readRequest();

    /// False when the client is gone.
    bool send(std::string_view bytes);

    /// A complete answer of status 200.
    bool sendOk(std::string_view body);

    /// Returns when the client has gone, or the server ends.
    void waitForEnd();

    /// Ends with a reset instead of an orderly close.
    void reset();

  private:
    bool receiveMore();

    int socket_;
    SSL* tls_;
    std::atomic<std::size_t>& receivedBytes_;
    std::string received_;
};

/// A server on the loopback interface that plays a script on each connection, each on a thread of its own.
class LoopbackServer {
  public:
    using Script = std::function<void(ServerConnection&)>;

    struct Tls {
        const Identity* identity = nullptr;
        int maximumVersion = 0;  ///< such as TLS1_1_VERSION; 0: no limit
    };

    explicit LoopbackServer(Script script, std::optional<Tls> tls = std::nullopt);
    ~LoopbackServer();

    LoopbackServer(const LoopbackServer&) = delete;
    LoopbackServer& operator=(const LoopbackServer&) = delete;

    /// "https://localhost:1234" or "http://localhost:1234".
    std::string origin() const;
    int port() const { return port_; }

    std::size_t connectionCount() const { return connectionCount_; }
    /// TLS handshakes that took up an earlier session.
    std::size_t resumedCount() const { return resumedCount_; }
    /// Bytes of requests, after decryption.
    std::size_t receivedBytes() const { return receivedBytes_; }

  private:
    void accept();
    void serve(int socket);

    Script script_;
    std::unique_ptr<SSL_CTX, decltype(&SSL_CTX_free)> context_{nullptr, SSL_CTX_free};
    int listener_ = -1;
    int port_ = 0;
    std::atomic<std::size_t> connectionCount_ = 0;
    std::atomic<std::size_t> resumedCount_ = 0;
    std::atomic<std::size_t> receivedBytes_ = 0;
    std::mutex mutex_;
    std::vector<int> sockets_;
    std::vector<std::thread> threads_;
    std::thread acceptor_;
};

}  // namespace corvane::test
