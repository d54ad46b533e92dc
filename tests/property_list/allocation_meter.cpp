#include "property_list/allocation_meter.h"

#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <new>

namespace corvane {

namespace {

bool isMetering = false;
std::ptrdiff_t bytesInUse = 0;
std::ptrdiff_t peak = 0;
std::size_t allocations = 0;

void* allocate(std::size_t size) {
    void* memory = std::malloc(std::max<std::size_t>(size, 1));
    if (memory == nullptr)
        throw std::bad_alloc();
    if (isMetering) {
        bytesInUse += static_cast<std::ptrdiff_t>(malloc_usable_size(memory));
        peak = std::max(peak, bytesInUse);
        ++allocations;
    }
    return memory;
}

void release(void* memory) {
    if (isMetering && memory != nullptr)
        bytesInUse -= static_cast<std::ptrdiff_t>(malloc_usable_size(memory));
    std::free(memory);
}

}  // namespace

AllocationMeter::AllocationMeter() {
    bytesInUse = 0;
    peak = 0;
    allocations = 0;
    isMetering = true;
}

AllocationMeter::~AllocationMeter() {
    isMetering = false;
}

std::size_t AllocationMeter::peakBytes() const {
    return static_cast<std::size_t>(peak);
}

std::size_t AllocationMeter::allocationCount() const {
    return allocations;
}

}  // namespace corvane

void* operator new(std::size_t size) {
    return corvane::allocate(size);
}
void* operator new[](std::size_t size) {
    return corvane::allocate(size);
}
void operator delete(void* memory) noexcept {
    corvane::release(memory);
}
void operator delete[](void* memory) noexcept {
    corvane::release(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    corvane::release(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    corvane::release(memory);
}
