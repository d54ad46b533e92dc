#include <gtest/gtest.h>

#include <string>

#include "platform/key_value_store.h"
#include "property_list/sample_property_list.h"
#include "settings/store_fixtures.h"

namespace corvane {
namespace {

/// What every domain promises, whatever it is kept in.
template <typename Fixture>
class KeyValueStoreTest : public testing::Test {
  protected:
    Fixture fixture_;
};

TYPED_TEST_SUITE(KeyValueStoreTest, StoreFixtures);

TYPED_TEST(KeyValueStoreTest, AFreshDomainIsEmpty) {
    EXPECT_EQ(this->fixture_.store().objectForKey("key"), std::nullopt);
    EXPECT_EQ(this->fixture_.stored(), PropertyListDictionary());
}

TYPED_TEST(KeyValueStoreTest, AnAssignedValueIsReadAtOnce) {
    this->fixture_.store().setObject("key", "value");
    EXPECT_EQ(this->fixture_.store().objectForKey("key"), PropertyListValue("value"));
    this->fixture_.store().setObject("key", std::int64_t{2});
    EXPECT_EQ(this->fixture_.store().objectForKey("key"), PropertyListValue(std::int64_t{2}));
}

TYPED_TEST(KeyValueStoreTest, AnAssignedValueIsStoredBySynchronize) {
    this->fixture_.store().setObject("key", "value");
    EXPECT_EQ(this->fixture_.stored(), PropertyListDictionary());
    EXPECT_TRUE(this->fixture_.store().synchronize());
    EXPECT_EQ(this->fixture_.stored(), (PropertyListDictionary{{"key", "value"}}));
    EXPECT_EQ(this->fixture_.store().objectForKey("key"), PropertyListValue("value"));
}

TYPED_TEST(KeyValueStoreTest, AbsentRemovesTheKey) {
    this->fixture_.store().setObject("key", "value");
    this->fixture_.store().setObject("other", "stays");
    ASSERT_TRUE(this->fixture_.store().synchronize());
    this->fixture_.store().setObject("key", std::nullopt);
    EXPECT_EQ(this->fixture_.store().objectForKey("key"), std::nullopt);
    ASSERT_TRUE(this->fixture_.store().synchronize());
    EXPECT_EQ(this->fixture_.stored(), (PropertyListDictionary{{"other", "stays"}}));
}

TYPED_TEST(KeyValueStoreTest, RemovingAMissingKeyIsNoError) {
    this->fixture_.store().setObject("key", std::nullopt);
    EXPECT_TRUE(this->fixture_.store().synchronize());
    EXPECT_EQ(this->fixture_.stored(), PropertyListDictionary());
}

TYPED_TEST(KeyValueStoreTest, EveryTypeIsKept) {
    const PropertyListDictionary sample = samplePropertyList();
    for (const auto& [key, value] : sample)
        this->fixture_.store().setObject(key, value);
    ASSERT_TRUE(this->fixture_.store().synchronize());
    EXPECT_TRUE(this->fixture_.stored() == sample);
    for (const auto& [key, value] : sample)
        EXPECT_EQ(this->fixture_.store().objectForKey(key), value) << key;
}

TYPED_TEST(KeyValueStoreTest, AnEmptyArrayIsAValue) {
    this->fixture_.store().setObject("key", PropertyListArray{});
    ASSERT_TRUE(this->fixture_.store().synchronize());
    EXPECT_EQ(this->fixture_.store().objectForKey("key"), PropertyListValue(PropertyListArray{}));
}

}  // namespace
}  // namespace corvane
