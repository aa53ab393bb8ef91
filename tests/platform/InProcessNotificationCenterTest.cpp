#include "platform/InProcessNotificationCenter.h"

#include <gtest/gtest.h>
#include <vector>

namespace quorvane {
namespace {

TEST(InProcessNotificationCenter, knows_how_many_observers_there_are) {
    InProcessNotificationCenter center;
    const auto first = center.addObserver("a", [] {});
    center.addObserver("b", [] {});
    EXPECT_EQ(center.observerCount(), 2U);
    center.removeObserver(first);
    EXPECT_EQ(center.observerCount(), 1U);
    center.removeObserver(first);
    EXPECT_EQ(center.observerCount(), 1U);
}

TEST(InProcessNotificationCenter, an_observer_that_is_added_meanwhile_is_not_part_of_the_notice) {
    InProcessNotificationCenter center;
    std::vector<int> told;
    center.addObserver("a", [&] {
        told.push_back(1);
        center.addObserver("a", [&] { told.push_back(2); });
    });
    center.post("a");
    EXPECT_EQ(told, (std::vector{1}));
}

TEST(InProcessNotificationCenter, an_observer_may_remove_itself_and_others_meanwhile) {
    InProcessNotificationCenter center;
    std::vector<int> told;
    NotificationCenter::Token first = 0;
    NotificationCenter::Token second = 0;
    first = center.addObserver("a", [&] {
        told.push_back(1);
        center.removeObserver(first);
        center.removeObserver(second);
    });
    second = center.addObserver("a", [&] { told.push_back(2); });
    center.addObserver("a", [&] { told.push_back(3); });
    center.post("a");
    EXPECT_EQ(told, (std::vector{1, 3}));
}

} // namespace
} // namespace quorvane
