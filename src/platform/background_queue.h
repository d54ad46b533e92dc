#pragma once

#include "platform/main_queue.h"

namespace corvane {

/// The global concurrent queue of high priority: runs each task on some thread other than the main thread,
/// several at once, in no promised order. May be called on any thread and returns at once.
class BackgroundQueue {
  public:
    virtual ~BackgroundQueue() = default;

    virtual void async(Task task) = 0;
};

}  // namespace corvane
