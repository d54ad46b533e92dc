#include "platform/memory/in_memory_key_value_store.h"

#include <utility>

namespace corvane {

std::optional<PropertyListValue> InMemoryKeyValueStore::objectForKey(std::string_view key) const {
    const auto found = domain_.find(std::string(key));
    if (found == domain_.end())
        return std::nullopt;
    return found->second;
}

void InMemoryKeyValueStore::setObject(std::string_view key, std::optional<PropertyListValue> value) {
    if (value)
        domain_.insert_or_assign(std::string(key), std::move(*value));
    else
        domain_.erase(std::string(key));
}

bool InMemoryKeyValueStore::synchronize() {
    stored_ = domain_;
    ++synchronizeCount_;
    return true;
}

}  // namespace corvane
