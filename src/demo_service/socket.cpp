#include "demo_service/socket.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

namespace corvane::demo {

Socket::Socket(FileDescriptor descriptor, const StopSignal& stop)
    : descriptor_(std::move(descriptor)), stop_(&stop) {
    // Answers are written in one piece each; waiting for more would only delay them.
    const int on = 1;
    static_cast<void>(::setsockopt(descriptor_.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on));
}

bool Socket::waitFor(short events, std::optional<std::chrono::milliseconds> time) {
    using std::chrono::steady_clock;
    const auto end = steady_clock::now() + time.value_or(std::chrono::milliseconds{0});
    while (!stop_->isSet()) {
        int left = -1;
        if (time) {
            const auto rest = std::chrono::ceil<std::chrono::milliseconds>(end - steady_clock::now());
            left = static_cast<int>(std::clamp<std::chrono::milliseconds::rep>(rest.count(), 0, 60'000));
        }
        std::array<pollfd, 2> polled{pollfd{descriptor_.get(), events, 0},
                                     pollfd{stop_->descriptor(), POLLIN, 0}};
        if (::poll(polled.data(), polled.size(), left) < 0 && errno != EINTR) {
            return false;
        }
        if (polled[1].revents != 0) {
            return false;
        }
        if (polled[0].revents != 0) {
            return true;
        }
        if (time && steady_clock::now() >= end) {
            return false;
        }
    }
    return false;
}

bool Socket::waitReadable() {
    return waitFor(POLLIN, std::nullopt);
}

bool Socket::waitWritable() {
    return waitFor(POLLOUT, std::nullopt);
}

bool Socket::waitWhileConnected(std::optional<std::chrono::milliseconds> time) {
    const bool isGone = waitFor(POLLRDHUP, time);
    return !isGone && !stop_->isSet();
}

void Socket::reset() {
    const linger immediately{.l_onoff = 1, .l_linger = 0};
    static_cast<void>(
        ::setsockopt(descriptor_.get(), SOL_SOCKET, SO_LINGER, &immediately, sizeof immediately));
    descriptor_.close();
}

}  // namespace corvane::demo
