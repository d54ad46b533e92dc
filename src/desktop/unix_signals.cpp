#include "desktop/unix_signals.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>

#include "platform/fatal_error.h"

namespace corvane {

namespace {

constexpr std::array<int, 3> endSignals{SIGTERM, SIGINT, SIGHUP};

/// Where the handler writes; a handler may do little more than that.
volatile sig_atomic_t pipeDescriptor = -1;

void handleSignal(int /*signal*/) {
    const int previousError = errno;
    const char byte = 0;
    // A full pipe is fine: it has been told already.
    [[maybe_unused]] const ssize_t written = write(pipeDescriptor, &byte, 1);
    errno = previousError;
}

void setHandler(void (*handler)(int)) {
    for (const int signal : endSignals) {
        struct sigaction present {};
        sigaction(signal, nullptr, &present);
        if (present.sa_handler == SIG_IGN)
            continue;
        struct sigaction action {};
        action.sa_handler = handler;
        action.sa_flags = SA_RESTART;
        sigaction(signal, &action, nullptr);
    }
}

}  // namespace

UnixSignals::UnixSignals(std::function<void()> endRequested) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        fatalError("cannot make a pipe for signals");
    readEnd_ = FileDescriptor(ends[0]);
    writeEnd_ = FileDescriptor(ends[1]);
    notifier_ = std::make_unique<QSocketNotifier>(readEnd_.number(), QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated,
                     [this, endRequested = std::move(endRequested)] {
                         drain();
                         endRequested();
                     });
    pipeDescriptor = writeEnd_.number();
    setHandler(handleSignal);
}

UnixSignals::~UnixSignals() {
    setHandler(SIG_DFL);
    pipeDescriptor = -1;
}

void UnixSignals::drain() const {
    std::array<char, 64> bytes{};
    while (read(readEnd_.number(), bytes.data(), bytes.size()) > 0) {
    }
}

}  // namespace corvane
