#include "platform/notification_center.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace corvane {
namespace {

using ::testing::ElementsAre;

TEST(NotificationCenterTest, CallsTheObserversOfTheNameAtOnceAndInOrder) {
    NotificationCenter center;
    std::vector<std::string> calls;
    center.addObserver("a", [&](const Notification&) { calls.emplace_back("first"); });
    center.addObserver("b", [&](const Notification&) { calls.emplace_back("other"); });
    center.addObserver("a", [&](const Notification&) { calls.emplace_back("second"); });
    center.post({"a", nullptr});
    center.post({"nobody listens", nullptr});
    EXPECT_THAT(calls, ElementsAre("first", "second"));
}

TEST(NotificationCenterTest, HandsOnTheVeryObject) {
    NotificationCenter center;
    std::shared_ptr<const void> received;
    center.addObserver("a", [&](const Notification& notification) { received = notification.object; });
    const auto object = std::make_shared<int>(1);
    center.post({"a", object});
    EXPECT_EQ(received.get(), object.get());
    center.post({"a", nullptr});
    EXPECT_EQ(received, nullptr);
}

TEST(NotificationCenterTest, BearsObserversThatPostAndObserve) {
    NotificationCenter center;
    std::vector<std::string> calls;
    center.addObserver("a", [&](const Notification&) {
        calls.emplace_back("a");
        for (int count = 0; count < 20; ++count)
            center.addObserver("a", [&](const Notification&) { calls.emplace_back("added"); });
        center.post({"b", nullptr});
        calls.emplace_back("a ends");
    });
    center.addObserver("b", [&](const Notification&) { calls.emplace_back("b"); });
    center.post({"a", nullptr});
    EXPECT_THAT(calls, ElementsAre("a", "b", "a ends"));
}

}  // namespace
}  // namespace corvane
