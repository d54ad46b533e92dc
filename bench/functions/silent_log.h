#pragma once

#include "platform/log.h"

namespace corvane::bench {

/// Costs nothing, so that what is measured is the work that leads to a line.
class SilentLog final : public Log {
  public:
    void log(std::string_view /*text*/) override {}
};

}  // namespace corvane::bench
