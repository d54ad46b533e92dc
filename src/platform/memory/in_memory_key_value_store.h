#pragma once

#include <map>
#include <string>

#include "platform/key_value_store.h"

namespace corvane {

/// A domain that lives as long as the object. `synchronize` copies the domain to what a restart would find.
class InMemoryKeyValueStore final : public KeyValueStore {
  public:
    std::optional<PropertyListValue> objectForKey(std::string_view key) const override;
    void setObject(std::string_view key, std::optional<PropertyListValue> value) override;
    bool synchronize() override;

    /// What `synchronize` wrote last.
    const PropertyListDictionary& stored() const { return stored_; }
    int synchronizeCount() const { return synchronizeCount_; }

  private:
    PropertyListDictionary domain_;
    PropertyListDictionary stored_;
    int synchronizeCount_ = 0;
};

}  // namespace corvane
