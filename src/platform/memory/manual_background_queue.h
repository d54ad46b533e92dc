#pragma once

#include <cstddef>
#include <deque>

#include "platform/background_queue.h"

namespace corvane {

/// A background queue that runs its tasks on the caller's thread, one after the other, when told to.
/// Single-threaded.
class ManualBackgroundQueue final : public BackgroundQueue {
  public:
    void async(Task task) override;

    /// Runs all waiting tasks in the order in which they were added, those that they add included.
    std::size_t runAll();

    std::size_t pendingCount() const { return tasks_.size(); }

  private:
    std::deque<Task> tasks_;
};

}  // namespace corvane
