#pragma once

#include "platform/date.h"

namespace corvane {

/// The wall clock. May be read on any thread; may jump when the user sets it.
class Clock {
  public:
    virtual ~Clock() = default;

    virtual Date now() const = 0;
};

}  // namespace corvane
