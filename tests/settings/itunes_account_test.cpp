#include "core/itunes_account.h"

#include <gtest/gtest.h>

#include <type_traits>

namespace corvane {
namespace {

TEST(ITunesAccount, IsMadeWithVendorIDAndNameOnly) {
    const ITunesAccount account("4711", "Demo");
    EXPECT_EQ(account.vendorID(), "4711");
    EXPECT_EQ(account.name(), "Demo");
    EXPECT_EQ(account.email(), std::nullopt);
    EXPECT_EQ(account.password(), std::nullopt);
}

TEST(ITunesAccount, CannotBeMadeWithoutThem) {
    EXPECT_FALSE(std::is_default_constructible_v<ITunesAccount>);
}

TEST(ITunesAccount, FieldsCanBeSetAndTakenAway) {
    ITunesAccount account("4711", "Demo");
    account.setEmail("a@example.com");
    account.setPassword("");
    account.setVendorID(std::nullopt);
    account.setName("Other");
    EXPECT_EQ(account.email(), "a@example.com");
    EXPECT_EQ(account.password(), "");
    EXPECT_EQ(account.vendorID(), std::nullopt);
    EXPECT_EQ(account.name(), "Other");
}

}  // namespace
}  // namespace corvane
