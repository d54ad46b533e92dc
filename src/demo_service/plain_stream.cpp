#include "demo_service/plain_stream.h"

#include <sys/socket.h>

#include <cerrno>
#include <utility>

namespace corvane::demo {

namespace {

bool mustWait() {
    return errno == EAGAIN || errno == EINTR;
}

}  // namespace

PlainStream::PlainStream(Socket socket) : socket_(std::move(socket)) {}

std::size_t PlainStream::read(std::span<std::uint8_t> buffer) {
    while (!socket_.stop().isSet()) {
        const ssize_t count = ::recv(socket_.descriptor(), buffer.data(), buffer.size(), 0);
        if (count >= 0) {
            return static_cast<std::size_t>(count);
        }
        if (!mustWait() || !socket_.waitReadable()) {
            return 0;
        }
    }
    return 0;
}

bool PlainStream::write(ByteView bytes) {
    while (!bytes.empty()) {
        if (socket_.stop().isSet()) {
            return false;
        }
        const ssize_t count = ::send(socket_.descriptor(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (count >= 0) {
            bytes = bytes.subspan(static_cast<std::size_t>(count));
        } else if (!mustWait() || !socket_.waitWritable()) {
            return false;
        }
    }
    return true;
}

}  // namespace corvane::demo
