#pragma once

#include <QSocketNotifier>
#include <functional>
#include <memory>

#include "platform/system/file_descriptor.h"

namespace corvane {

/// Turns the signals that ask a process to end (SIGTERM, SIGINT, SIGHUP) into a call from the event loop. A
/// signal that the process was started to ignore stays ignored. One object at a time.
class UnixSignals {
  public:
    explicit UnixSignals(std::function<void()> endRequested);
    /// The signals are as they were before.
    ~UnixSignals();

    UnixSignals(const UnixSignals&) = delete;
    UnixSignals& operator=(const UnixSignals&) = delete;

  private:
    void drain() const;

    FileDescriptor readEnd_;
    FileDescriptor writeEnd_;
    std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace corvane
