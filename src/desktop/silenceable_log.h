#pragma once

#include <atomic>

#include "platform/log.h"

namespace corvane {

/// Hands lines on until it is silenced. Any thread.
class SilenceableLog final : public Log {
  public:
    /// The receiver must outlive the log.
    explicit SilenceableLog(Log& receiver) : receiver_(receiver) {}

    void log(std::string_view text) override {
        if (!isSilent_)
            receiver_.log(text);
    }

    /// Drops every later line.
    void silence() { isSilent_ = true; }

  private:
    Log& receiver_;
    std::atomic<bool> isSilent_ = false;
};

}  // namespace corvane
