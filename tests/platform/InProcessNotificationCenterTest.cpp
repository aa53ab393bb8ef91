#include "platform/InProcessNotificationCenter.h"

#include <gtest/gtest.h>
#include <memory>
#include <vector>

namespace quorvane {
namespace {

TEST(InProcessNotificationCenter, CountsItsObservers) {
    InProcessNotificationCenter center;
    const auto first = center.addObserver("a", [] {});
    center.addObserver("b", [] {});
    EXPECT_EQ(center.observerCount(), 2U);
    center.removeObserver(first);
    EXPECT_EQ(center.observerCount(), 1U);
    center.removeObserver(first);
    EXPECT_EQ(center.observerCount(), 1U);
}

TEST(InProcessNotificationCenter, AnObserverAddedDuringAPostIsNotCalledForIt) {
    InProcessNotificationCenter center;
    std::vector<int> told;
    center.addObserver("a", [&] {
        told.push_back(1);
        center.addObserver("a", [&] { told.push_back(2); });
    });
    center.post("a");
    EXPECT_EQ(told, (std::vector{1}));
}

TEST(InProcessNotificationCenter, AnObserverMayRemoveItselfAndOthersDuringAPost) {
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

TEST(InProcessNotificationCenter, CallsTheObserversOfTheNameInTheOrderOfRegistration) {
    InProcessNotificationCenter center;
    std::vector<int> told;
    center.addObserver("a", [&] { told.push_back(1); });
    center.addObserver("b", [&] { told.push_back(2); });
    center.addObserver("a", [&] { told.push_back(3); });
    center.post("a");
    EXPECT_EQ(told, (std::vector{1, 3}));
    center.post("c");
    EXPECT_EQ(told, (std::vector{1, 3}));
}

TEST(InProcessNotificationCenter, TokensAreUniqueAndNeverZero) {
    InProcessNotificationCenter center;
    const auto first = center.addObserver("a", [] {});
    center.removeObserver(first);
    const auto second = center.addObserver("a", [] {});
    EXPECT_NE(first, 0U);
    EXPECT_NE(second, first);
}

TEST(InProcessNotificationCenter, ARemovedObserverIsNotCalledAndItsBlockIsDestroyed) {
    InProcessNotificationCenter center;
    const auto captured = std::make_shared<int>();
    const auto token = center.addObserver("a", [captured] { ++*captured; });
    center.removeObserver(token);
    center.post("a");
    EXPECT_EQ(*captured, 0);
    EXPECT_EQ(captured.use_count(), 1);
}

} // namespace
} // namespace quorvane
