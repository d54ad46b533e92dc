#include "platform/system/sigpipe_blocker.h"

#include <cerrno>
#include <ctime>

namespace corvane {
namespace {

sigset_t sigpipeOnly() {
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGPIPE);
    return set;
}

}  // namespace

SigpipeBlocker::SigpipeBlocker() {
    sigset_t pending;
    sigpending(&pending);
    wasPending_ = sigismember(&pending, SIGPIPE) == 1;
    const sigset_t set = sigpipeOnly();
    pthread_sigmask(SIG_BLOCK, &set, &previousMask_);
}

SigpipeBlocker::~SigpipeBlocker() {
    const int savedError = errno;
    if (!wasPending_) {
        // Takes back the signal that a write of ours may have raised; it would arrive with the mask restored.
        const sigset_t set = sigpipeOnly();
        const timespec noWait{};
        while (sigtimedwait(&set, nullptr, &noWait) == -1 && errno == EINTR) {
        }
    }
    pthread_sigmask(SIG_SETMASK, &previousMask_, nullptr);
    errno = savedError;
}

}  // namespace corvane
