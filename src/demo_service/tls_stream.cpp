#include "demo_service/tls_stream.h"

#include <openssl/err.h>

#include <algorithm>
#include <utility>

namespace corvane::demo {

TlsStream::TlsStream(Socket socket, SSL_CTX& context) : socket_(std::move(socket)), tls_(SSL_new(&context)) {}

bool TlsStream::waitAfter(int result) {
    switch (SSL_get_error(tls_.get(), result)) {
        case SSL_ERROR_WANT_READ:
            return socket_.waitReadable();
        case SSL_ERROR_WANT_WRITE:
            return socket_.waitWritable();
        default:
            return false;
    }
}

bool TlsStream::handshake() {
    if (!tls_ || SSL_set_fd(tls_.get(), socket_.descriptor()) != 1) {
        return false;
    }
    while (!socket_.stop().isSet()) {
        ERR_clear_error();
        const int result = SSL_accept(tls_.get());
        if (result == 1) {
            return true;
        }
        if (!waitAfter(result)) {
            return false;
        }
    }
    return false;
}

std::size_t TlsStream::read(std::span<std::uint8_t> buffer) {
    while (!socket_.stop().isSet()) {
        ERR_clear_error();
        std::size_t count = 0;
        const int result = SSL_read_ex(tls_.get(), buffer.data(), buffer.size(), &count);
        if (result == 1) {
            return count;
        }
        if (!waitAfter(result)) {
            return 0;
        }
    }
    return 0;
}

bool TlsStream::write(ByteView bytes) {
    while (!bytes.empty()) {
        if (socket_.stop().isSet()) {
            return false;
        }
        ERR_clear_error();
        std::size_t count = 0;
        const int result = SSL_write_ex(tls_.get(), bytes.data(), bytes.size(), &count);
        if (result == 1) {
            bytes = bytes.subspan(count);
        } else if (!waitAfter(result)) {
            return false;
        }
    }
    return true;
}

void TlsStream::close() {
    // After a reset the number of the descriptor may be another connection's already.
    if (!socket_.isOpen()) {
        return;
    }
    // Only our farewell is sent; waiting for the client's would let a silent client hold the thread.
    ERR_clear_error();
    SSL_shutdown(tls_.get());
    ERR_clear_error();
    socket_.close();
}

}  // namespace corvane::demo
