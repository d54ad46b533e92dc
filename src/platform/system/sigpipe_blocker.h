#pragma once

#include <csignal>

namespace corvane {

/// While it lives, writing to a closed pipe or connection on this thread is an error of that call and no
/// signal that ends the process. Other threads and the process's signal handling stay as they are.
class SigpipeBlocker {
  public:
    SigpipeBlocker();
    ~SigpipeBlocker();

    SigpipeBlocker(const SigpipeBlocker&) = delete;
    SigpipeBlocker& operator=(const SigpipeBlocker&) = delete;

  private:
    sigset_t previousMask_{};
    bool wasPending_ = false;
};

}  // namespace corvane
