#pragma once

#include <atomic>

#include "demo_service/file_descriptor.h"

namespace corvane::demo {

/// Wakes every thread that waits on a socket when the service ends. Set once, never taken back.
class StopSignal {
  public:
    StopSignal();

    void set();
    bool isSet() const { return isSet_; }

    /// Readable once the signal is set; for poll().
    int descriptor() const { return event_.get(); }

  private:
    std::atomic<bool> isSet_ = false;
    FileDescriptor event_;
};

}  // namespace corvane::demo
