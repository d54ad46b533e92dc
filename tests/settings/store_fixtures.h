#pragma once

#include <gtest/gtest.h>

#include <filesystem>

#include "platform/memory/in_memory_key_value_store.h"
#include "platform/memory/in_memory_log.h"
#include "platform/memory/manual_clock.h"
#include "platform/property_list/property_list_reader.h"
#include "platform/system/property_list_file_store.h"
#include "support/temporary_folder.h"

namespace corvane {

/// A domain, and what a restart would find of it. The real one and the one in memory take the same tests.
class InMemoryStoreFixture {
  public:
    KeyValueStore& store() { return store_; }
    PropertyListDictionary stored() const { return store_.stored(); }

  private:
    InMemoryKeyValueStore store_;
};

class FileStoreFixture {
  public:
    KeyValueStore& store() { return store_; }

    PropertyListDictionary stored() const {
        if (!std::filesystem::exists(path_))
            return {};
        return *readPropertyList(asBytes(test::readFile(path_))).value().get<PropertyListDictionary>();
    }

  private:
    test::TemporaryFolder folder_;
    std::filesystem::path path_ = folder_.path() / "config" / "corvane" / "settings.plist";
    InMemoryLog log_;
    ManualClock clock_;
    PropertyListFileStore store_{path_, log_, clock_};
};

using StoreFixtures = testing::Types<InMemoryStoreFixture, FileStoreFixture>;

}  // namespace corvane
