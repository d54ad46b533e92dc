#pragma once

#include "platform/clock.h"

namespace corvane {

/// The machine's clock.
class SystemClock final : public Clock {
  public:
    Date now() const override { return Date::clock::now(); }
};

}  // namespace corvane
