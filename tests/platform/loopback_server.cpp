#include "platform/loopback_server.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>

namespace corvane::test {
namespace {

constexpr std::string_view endOfHead = "\r\n\r\n";
constexpr std::string_view contentLengthName = "\r\nContent-Length: ";

void require(bool isDone) {
    if (!isDone)
        std::abort();
}

std::size_t contentLength(std::string_view head) {
    const std::size_t found = head.find(contentLengthName);
    if (found == std::string_view::npos)
        return 0;
    return std::strtoul(std::string(head.substr(found + contentLengthName.size())).c_str(), nullptr, 10);
}

}  // namespace

ServerConnection::ServerConnection(int socket, SSL* tls, std::atomic<std::size_t>& receivedBytes)
    : socket_(socket), tls_(tls), receivedBytes_(receivedBytes) {}

ServerConnection::~ServerConnection() {
    if (tls_ != nullptr)
        SSL_free(tls_);
}

bool ServerConnection::receiveMore() {
    std::array<char, 16384> buffer{};
    const long count = tls_ != nullptr ? SSL_read(tls_, buffer.data(), static_cast<int>(buffer.size()))
                                       : recv(socket_, buffer.data(), buffer.size(), 0);
    if (count <= 0)
        return false;
    received_.append(buffer.data(), static_cast<std::size_t>(count));
    receivedBytes_ += static_cast<std::size_t>(count);
    return true;
}

std::optional<std::string> ServerConnection::readRequest() {
    while (received_.find(endOfHead) == std::string::npos) {
        if (!receiveMore())
            return std::nullopt;
    }
    const std::size_t headSize = received_.find(endOfHead) + endOfHead.size();
    const std::size_t size = headSize + contentLength(std::string_view(received_).substr(0, headSize));
    while (received_.size() < size) {
        if (!receiveMore())
            return std::nullopt;
    }
    std::string request = received_.substr(0, size);
    received_.erase(0, size);
    return request;
}

bool ServerConnection::send(std::string_view bytes) {
    while (!bytes.empty()) {
        const long count = tls_ != nullptr ? SSL_write(tls_, bytes.data(), static_cast<int>(bytes.size()))
                                           : ::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (count <= 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

bool ServerConnection::sendOk(std::string_view body) {
    std::string answer = "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n";
    answer += body;
    return send(answer);
}

void ServerConnection::waitForEnd() {
    while (receiveMore()) {
    }
}

void ServerConnection::reset() {
    const linger atOnce{1, 0};
    setsockopt(socket_, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
}

LoopbackServer::LoopbackServer(Script script, std::optional<Tls> tls) : script_(std::move(script)) {
    if (tls) {
        context_.reset(SSL_CTX_new(TLS_server_method()));
        SSL_CTX* const context = context_.get();
        require(SSL_CTX_use_certificate(context, tls->identity->certificate.get()) == 1);
        require(SSL_CTX_use_PrivateKey(context, tls->identity->key.get()) == 1);
        const std::string_view sessions = "corvane test";
        require(SSL_CTX_set_session_id_context(context,
                                               reinterpret_cast<const unsigned char*>(sessions.data()),
                                               static_cast<unsigned>(sessions.size())) == 1);
        if (tls->maximumVersion != 0) {
            SSL_CTX_set_security_level(context, 0);
            SSL_CTX_set_min_proto_version(context, TLS1_VERSION);
            SSL_CTX_set_max_proto_version(context, tls->maximumVersion);
        }
    }
    listener_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    require(bind(listener_, reinterpret_cast<sockaddr*>(&address), length) == 0);
    require(listen(listener_, SOMAXCONN) == 0);
    require(getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &length) == 0);
    port_ = ntohs(address.sin_port);
    acceptor_ = std::thread([this] { accept(); });
}

LoopbackServer::~LoopbackServer() {
    shutdown(listener_, SHUT_RDWR);
    acceptor_.join();
    close(listener_);
    {
        const std::lock_guard lock(mutex_);
        for (const int socket : sockets_)
            shutdown(socket, SHUT_RDWR);
    }
    for (std::thread& thread : threads_)
        thread.join();
}

std::string LoopbackServer::origin() const {
    return (context_ ? "https://localhost:" : "http://localhost:") + std::to_string(port_);
}

void LoopbackServer::accept() {
    while (true) {
        const int socket = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
        if (socket < 0)
            return;
        ++connectionCount_;
        const std::lock_guard lock(mutex_);
        sockets_.push_back(socket);
        threads_.emplace_back([this, socket] { serve(socket); });
    }
}

void LoopbackServer::serve(int socket) {
    // A write of the TLS library to a client that has gone is an error here, not the end of the test.
    sigset_t pipe;
    sigemptyset(&pipe);
    sigaddset(&pipe, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &pipe, nullptr);

    SSL* tls = nullptr;
    bool isReady = true;
    if (context_) {
        tls = SSL_new(context_.get());
        SSL_set_fd(tls, socket);
        isReady = SSL_accept(tls) == 1;
        if (isReady && SSL_session_reused(tls) == 1)
            ++resumedCount_;
    }
    {
        ServerConnection connection(socket, tls, receivedBytes_);
        if (isReady)
            script_(connection);
    }
    const std::lock_guard lock(mutex_);
    sockets_.erase(std::remove(sockets_.begin(), sockets_.end(), socket), sockets_.end());
    close(socket);
}

}  // namespace corvane::test
