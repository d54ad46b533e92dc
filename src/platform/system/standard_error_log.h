#pragma once

#include "platform/log.h"

namespace corvane {

/// Writes each line to standard error in one piece, with the local time and the process id in front. A line
/// that nobody reads is lost, if the process ignores broken pipes.
class StandardErrorLog final : public Log {
  public:
    void log(std::string_view text) override;
};

}  // namespace corvane
