#include "platform/memory/in_memory_log.h"

#include <algorithm>

namespace corvane {

void InMemoryLog::log(std::string_view text) {
    const std::lock_guard lock(mutex_);
    lines_.emplace_back(text);
}

std::vector<std::string> InMemoryLog::lines() const {
    const std::lock_guard lock(mutex_);
    return lines_;
}

bool InMemoryLog::contains(std::string_view line) const {
    const std::lock_guard lock(mutex_);
    return std::find(lines_.begin(), lines_.end(), line) != lines_.end();
}

}  // namespace corvane
