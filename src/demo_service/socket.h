#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <span>
#include <string_view>

#include "demo_service/file_descriptor.h"
#include "demo_service/stop_signal.h"

namespace corvane::demo {

/// A connected socket that never blocks. Every wait ends at once when the service ends.
class Socket {
  public:
    Socket(FileDescriptor descriptor, const StopSignal& stop);

    int descriptor() const { return descriptor_.get(); }
    const StopSignal& stop() const { return *stop_; }

    /// Waits until there is something to read or room to write; false when the service ends.
    bool waitReadable();
    bool waitWritable();

    /// Waits until the time has passed, the other side is gone or the service ends; absent time: no limit.
    /// True when the time has passed.
    bool waitWhileConnected(std::optional<std::chrono::milliseconds> time);

    /// Closes with a reset instead of an orderly end.
    void reset();
    void close() { descriptor_.close(); }
    bool isOpen() const { return descriptor_.isOpen(); }

  private:
    bool waitFor(short events, std::optional<std::chrono::milliseconds> time);

    FileDescriptor descriptor_;
    const StopSignal* stop_;
};

}  // namespace corvane::demo
