#pragma once

#include <cstddef>

namespace corvane {

/// Counts what `operator new` hands out while it lives. One at a time, on one thread.
class AllocationMeter {
  public:
    AllocationMeter();
    ~AllocationMeter();

    AllocationMeter(const AllocationMeter&) = delete;
    AllocationMeter& operator=(const AllocationMeter&) = delete;

    /// The most bytes that were in use at one time beyond those in use at the start.
    std::size_t peakBytes() const;
    std::size_t allocationCount() const;
};

}  // namespace corvane
