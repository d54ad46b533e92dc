#pragma once

#include "platform/application.h"

namespace corvane {

/// Counts how often it was asked to end, and goes on.
class RecordingApplication final : public Application {
  public:
    void terminate() override { ++terminateCount_; }
    int terminateCount() const { return terminateCount_; }

  private:
    int terminateCount_ = 0;
};

}  // namespace corvane
