#include "demo_service/stop_signal.h"

#include <sys/eventfd.h>

namespace corvane::demo {

StopSignal::StopSignal() : event_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

void StopSignal::set() {
    isSet_ = true;
    // The counter of a fresh event cannot overflow by one more.
    static_cast<void>(::eventfd_write(event_.get(), 1));
}

}  // namespace corvane::demo
