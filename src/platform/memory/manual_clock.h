#pragma once

#include "platform/clock.h"

namespace corvane {

/// A clock that stands still until it is set.
class ManualClock final : public Clock {
  public:
    explicit ManualClock(Date now = {}) : now_(now) {}

    Date now() const override { return now_; }
    void set(Date now) { now_ = now; }

  private:
    Date now_;
};

}  // namespace corvane
