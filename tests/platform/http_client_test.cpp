#include "platform/http_client.h"

#include <gtest/gtest.h>

namespace corvane {
namespace {

TEST(HttpResponseTest, FindsAHeaderByItsExactName) {
    HttpResponse response;
    response.headers = {{"ErrorMsg", "no"}, {"ERRORMSG", "yes"}, {"X", ""}};
    EXPECT_EQ(response.headerField("ERRORMSG"), "yes");
    EXPECT_EQ(response.headerField("X"), "");
    EXPECT_FALSE(response.headerField("errormsg"));
    EXPECT_FALSE(response.headerField("ERROR"));
}

TEST(HttpResponseTest, JoinsRepeatedHeaders) {
    HttpResponse response;
    response.headers = {{"A", "1"}, {"B", "x"}, {"A", ""}, {"A", "3"}};
    EXPECT_EQ(response.headerField("A"), "1, , 3");
}

}  // namespace
}  // namespace corvane
