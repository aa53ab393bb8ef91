#include "base/Observable.h"

#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <vector>

namespace quorvane {
namespace {

TEST(Observable, tells_of_a_change) {
    Observable<int> value{1};
    int notices = 0;
    const auto subscription = value.observe([&] { ++notices; });
    value = 2;
    EXPECT_EQ(value.get(), 2);
    EXPECT_EQ(notices, 1);
}

TEST(Observable, a_write_of_the_same_value_notifies_nobody) {
    Observable<double> value{0.5};
    int notices = 0;
    const auto subscription = value.observe([&] { ++notices; });
    value = 0.5;
    EXPECT_EQ(notices, 0);
}

TEST(Observable, can_be_made_to_notify_without_a_change) {
    Observable<double> value{0.5};
    int notices = 0;
    const auto subscription = value.observe([&] { ++notices; });
    value.setAndNotify(0.5);
    EXPECT_EQ(notices, 1);
}

TEST(Observable, holds_the_new_value_when_it_tells) {
    Observable<int> value{1};
    int seen = 0;
    const auto subscription = value.observe([&] { seen = value; });
    value = 7;
    EXPECT_EQ(seen, 7);
}

TEST(Observable, tells_observers_in_the_order_of_registration) {
    Observable<int> value;
    std::vector<int> order;
    const auto first = value.observe([&] { order.push_back(1); });
    const auto second = value.observe([&] { order.push_back(2); });
    value = 1;
    EXPECT_EQ(order, (std::vector{1, 2}));
}

TEST(Observable, a_dropped_subscription_hears_nothing) {
    Observable<int> value;
    int notices = 0;
    {
        const auto subscription = value.observe([&] { ++notices; });
    }
    value = 1;
    EXPECT_EQ(notices, 0);
}

TEST(Observable, an_observer_may_cancel_itself_while_it_is_told) {
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
    EXPECT_EQ(guard.use_count(), 1) << "a cancelled observer must let go of what it captured";
}

TEST(Observable, an_observer_that_another_one_cancels_is_not_told) {
    Observable<int> value;
    int notices = 0;
    Subscription second;
    const auto first = value.observe([&] { second.cancel(); });
    second = value.observe([&] { ++notices; });
    value = 1;
    EXPECT_EQ(notices, 0);
}

TEST(Observable, an_observer_that_is_added_while_telling_hears_the_next_change) {
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

TEST(Observable, a_subscription_may_outlive_it) {
    auto value = std::make_unique<Observable<int>>();
    Subscription subscription = value->observe([] {});
    value.reset();
    subscription.cancel();
}

TEST(Observable, a_moved_subscription_still_counts_and_the_old_handle_does_not) {
    Observable<int> value;
    int notices = 0;
    std::optional<Subscription> first = value.observe([&] { ++notices; });
    const Subscription second = std::move(*first);
    first.reset();
    value = 1;
    EXPECT_EQ(notices, 1);
}

TEST(Observable, a_subscription_that_is_assigned_over_ends) {
    Observable<int> value;
    int first = 0;
    int second = 0;
    Subscription subscription = value.observe([&] { ++first; });
    subscription = value.observe([&] { ++second; });
    value = 1;
    EXPECT_EQ(first, 0);
    EXPECT_EQ(second, 1);
}

TEST(Observable, a_cancelled_observer_is_let_go_of_at_once) {
    Observable<int> value;
    const auto captured = std::make_shared<int>();
    Subscription subscription = value.observe([captured] {});
    EXPECT_EQ(captured.use_count(), 2);
    subscription.cancel();
    EXPECT_EQ(captured.use_count(), 1);
}

TEST(Observable, a_notice_of_what_is_kept_elsewhere_is_told_every_time) {
    ChangeNotice notice;
    int notices = 0;
    const auto subscription = notice.observe([&] { ++notices; });
    notice.notify();
    notice.notify();
    EXPECT_EQ(notices, 2);
}

} // namespace
} // namespace quorvane
