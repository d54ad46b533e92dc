#include "import_command/interruption.h"

#include <unistd.h>

#include <atomic>
#include <csignal>

namespace corvane::import_command {
namespace {

std::atomic<bool> lineIsOpen = false;
static_assert(std::atomic<bool>::is_always_lock_free, "read in a signal handler");

extern "C" void endProcess(int signal) {
    if (lineIsOpen) {
        const auto written = write(STDOUT_FILENO, "\n", 1);
        static_cast<void>(written);
    }
    constexpr int exitStatusBase = 128;
    _exit(exitStatusBase + signal);
}

}  // namespace

void endAtInterruption() {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction action {};
        sigaction(signal, nullptr, &action);
        if (action.sa_handler == SIG_IGN)
            continue;
        action.sa_handler = endProcess;
        action.sa_flags = 0;
        sigaction(signal, &action, nullptr);
    }
}

void setLineIsOpen(bool isOpen) {
    lineIsOpen = isOpen;
}

}  // namespace corvane::import_command
