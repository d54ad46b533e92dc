#pragma once

#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "platform/log.h"

namespace corvane {

/// Keeps the lines in memory.
class InMemoryLog final : public Log {
  public:
    void log(std::string_view text) override;

    /// A copy of the lines so far, oldest first.
    std::vector<std::string> lines() const;

    bool contains(std::string_view line) const;

  private:
    mutable std::mutex mutex_;
    std::vector<std::string> lines_;
};

}  // namespace corvane
