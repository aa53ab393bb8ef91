#include "base/Observable.h"

#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <vector>

namespace quorvane {
namespace {

TEST(Observable, NotifiesOfAChange) {
    Observable<int> value{1};
    int notices = 0;
    const auto subscription = value.observe([&] { ++notices; });
    value = 2;
    EXPECT_EQ(value.get(), 2);
    EXPECT_EQ(notices, 1);
}

TEST(Observable, AWriteOfTheSameValueDoesNotNotify) {
    Observable<double> value{0.5};
    int notices = 0;
    const auto subscription = value.observe([&] { ++notices; });
    value = 0.5;
    EXPECT_EQ(notices, 0);
}

TEST(Observable, CanBeMadeToNotifyWithoutAChange) {
    Observable<double> value{0.5};
    int notices = 0;
    const auto subscription = value.observe([&] { ++notices; });
    value.setAndNotify(0.5);
    EXPECT_EQ(notices, 1);
}

TEST(Observable, HasTheNewValueWhenItNotifies) {
    Observable<int> value{1};
    int seen = 0;
    const auto subscription = value.observe([&] { seen = value; });
    value = 7;
    EXPECT_EQ(seen, 7);
}

TEST(Observable, NotifiesInTheOrderOfRegistration) {
    Observable<int> value;
    std::vector<int> order;
    const auto first = value.observe([&] { order.push_back(1); });
    const auto second = value.observe([&] { order.push_back(2); });
    value = 1;
    EXPECT_EQ(order, (std::vector{1, 2}));
}

TEST(Observable, ADroppedSubscriptionIsNotCalled) {
    Observable<int> value;
    int notices = 0;
    {
        const auto subscription = value.observe([&] { ++notices; });
    }
    value = 1;
    EXPECT_EQ(notices, 0);
}

TEST(Observable, AnObserverMayCancelItself) {
    Observable<int> value;
    int notices = 0;
    Subscription subscription;
    auto guard = std::make_shared<int>(0);
    subscription = value.observe([&, guard] {
        subscription.cancel();
        notices += *guard + 1;
    });
    value = 1;
    value = 2;
    EXPECT_EQ(notices, 1);
    EXPECT_EQ(guard.use_count(), 1) << "a cancelled observer must release what it captured";
}

TEST(Observable, AnObserverCancelledByAnEarlierOneIsNotCalled) {
    Observable<int> value;
    int notices = 0;
    Subscription second;
    const auto first = value.observe([&] { second.cancel(); });
    second = value.observe([&] { ++notices; });
    value = 1;
    EXPECT_EQ(notices, 0);
}

TEST(Observable, AnObserverAddedDuringANotificationIsCalledFromTheNextChangeOn) {
    Observable<int> value;
    int notices = 0;
    Subscription late;
    const auto first = value.observe([&] {
        if (value == 1)
            late = value.observe([&] { ++notices; });
    });
    value = 1;
    EXPECT_EQ(notices, 0);
    value = 2;
    EXPECT_EQ(notices, 1);
}

TEST(Observable, ASubscriptionMayOutliveIt) {
    auto value = std::make_unique<Observable<int>>();
    Subscription subscription = value->observe([] {});
    value.reset();
    subscription.cancel();
}

TEST(Observable, AMovedSubscriptionStillCountsAndTheOldHandleDoesNot) {
    Observable<int> value;
    int notices = 0;
    std::optional<Subscription> first = value.observe([&] { ++notices; });
    const Subscription second = std::move(*first);
    first.reset();
    value = 1;
    EXPECT_EQ(notices, 1);
}

TEST(Observable, AssigningToASubscriptionEndsIt) {
    Observable<int> value;
    int first = 0;
    int second = 0;
    Subscription subscription = value.observe([&] { ++first; });
    subscription = value.observe([&] { ++second; });
    value = 1;
    EXPECT_EQ(first, 0);
    EXPECT_EQ(second, 1);
}

TEST(Observable, ACancelledObserverIsDestroyedAtOnce) {
    Observable<int> value;
    const auto captured = std::make_shared<int>();
    Subscription subscription = value.observe([captured] {});
    EXPECT_EQ(captured.use_count(), 2);
    subscription.cancel();
    EXPECT_EQ(captured.use_count(), 1);
}

TEST(Observable, AChangeNoticeNotifiesEveryTime) {
    ChangeNotice notice;
    int notices = 0;
    const auto subscription = notice.observe([&] { ++notices; });
    notice.notify();
    notice.notify();
    EXPECT_EQ(notices, 2);
}

} // namespace
} // namespace quorvane
