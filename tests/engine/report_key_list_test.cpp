#include "engine/report_key_list.h"

#include <gtest/gtest.h>

namespace corvane {
namespace {

using Keys = std::vector<std::string>;

TEST(ReportKeyListTest, AppendsNewKeysInTheOrderInWhichTheyCome) {
    ReportKeyList list(Keys{});
    list.add("20150104");
    list.add("2015");
    list.add("201501");
    EXPECT_EQ(list.keys(), (Keys{"20150104", "2015", "201501"}));
}

TEST(ReportKeyListTest, KeepsAKeyThatIsThereAlreadyOnce) {
    ReportKeyList list(Keys{"2015"});
    list.add("2015");
    list.add("201501");
    list.add("201501");
    EXPECT_EQ(list.keys(), (Keys{"2015", "201501"}));
}

TEST(ReportKeyListTest, KeepsAStoredListAsItIs) {
    const ReportKeyList list(Keys{"b", "a", "b", ""});
    EXPECT_EQ(list.keys(), (Keys{"b", "a", "b", ""}));
}

}  // namespace
}  // namespace corvane
