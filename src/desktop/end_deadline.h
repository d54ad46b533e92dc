#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "platform/log.h"

namespace corvane {

/// Ends the process when its orderly end takes too long, whatever hangs.
class EndDeadline {
  public:
    /// The log must outlive the deadline.
    explicit EndDeadline(Log& log) : log_(log) {}
    /// Everything has ended in time.
    ~EndDeadline();

    EndDeadline(const EndDeadline&) = delete;
    EndDeadline& operator=(const EndDeadline&) = delete;

    /// From now on; a second call changes nothing.
    void start(std::chrono::milliseconds limit);

  private:
    void watch(std::chrono::milliseconds limit);

    Log& log_;
    std::mutex mutex_;
    std::condition_variable changed_;
    bool hasEnded_ = false;
    std::thread watcher_;
};

}  // namespace corvane
