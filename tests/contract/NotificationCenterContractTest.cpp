#include <QCoreApplication>
#include <gmock/gmock.h>
#include <memory>
#include <string>
#include <vector>

#include "platform/InProcessNotificationCenter.h"
#include "platform/linux/power/LinuxSleepNotifications.h"
#include "tests/contract/Contract.h"
#include "tests/support/QtApplication.h"

namespace quorvane {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class NotificationCenterContract : public Contract<NotificationCenter> {
protected:
    NotificationCenter::Token observe(std::string_view name, const std::string& mark) {
        return m_backend->addObserver(name, [this, mark] { m_heard.push_back(mark); });
    }

    QtApplication m_application;
    std::vector<std::string> m_heard;
};

TEST_P(NotificationCenterContract, ANotificationReachesItsObserversInOrderOfRegistration) {
    observe("a", "first");
    observe("b", "other");
    observe("a", "second");
    m_backend->post("a");
    EXPECT_THAT(m_heard, ElementsAre("first", "second"));
}

TEST_P(NotificationCenterContract, ANotificationWithoutObserversIsHarmless) {
    m_backend->post("a");
    observe("b", "other");
    m_backend->post("a");
    EXPECT_THAT(m_heard, IsEmpty());
}

TEST_P(NotificationCenterContract, TokensDifferAndAreNeverZero) {
    const auto first = observe("a", "");
    const auto second = observe("a", "");
    EXPECT_NE(first, 0U);
    EXPECT_NE(second, 0U);
    EXPECT_NE(first, second);
}

TEST_P(NotificationCenterContract, ARemovedObserverHearsNothingMore) {
    const auto token = observe("a", "removed");
    observe("a", "kept");
    m_backend->removeObserver(token);
    m_backend->post("a");
    EXPECT_THAT(m_heard, ElementsAre("kept"));
}

TEST_P(NotificationCenterContract, RemovingAnUnknownTokenIsIgnored) {
    const auto token = observe("a", "gone");
    observe("a", "kept");
    m_backend->removeObserver(token);
    m_backend->removeObserver(token);
    m_backend->removeObserver(0);
    m_backend->removeObserver(token + 1000);
    m_backend->post("a");
    EXPECT_THAT(m_heard, ElementsAre("kept"));
}

TEST_P(NotificationCenterContract, ABlockMayRemoveItself) {
    NotificationCenter::Token token = 0;
    token = m_backend->addObserver("a", [&] {
        m_heard.emplace_back("once");
        m_backend->removeObserver(token);
    });
    m_backend->post("a");
    m_backend->post("a");
    EXPECT_THAT(m_heard, ElementsAre("once"));
}

TEST_P(NotificationCenterContract, ABlockRemovedDuringANotificationDoesNotHearIt) {
    NotificationCenter::Token later = 0;
    m_backend->addObserver("a", [&] { m_backend->removeObserver(later); });
    later = observe("a", "later");
    m_backend->post("a");
    EXPECT_THAT(m_heard, IsEmpty());
}

TEST_P(NotificationCenterContract, ABlockAddedDuringANotificationHearsTheNextOne) {
    bool added = false;
    m_backend->addObserver("a", [&] {
        if (!std::exchange(added, true))
            observe("a", "late");
    });
    m_backend->post("a");
    EXPECT_THAT(m_heard, IsEmpty());
    m_backend->post("a");
    EXPECT_THAT(m_heard, ElementsAre("late"));
}

TEST_P(NotificationCenterContract, AnObserverMayComeBackAfterTheLastOneLeft) {
    m_backend->removeObserver(observe("a", "before"));
    observe("a", "after");
    m_backend->post("a");
    EXPECT_THAT(m_heard, ElementsAre("after"));
}

INSTANTIATE_TEST_SUITE_P(InProcess, NotificationCenterContract, on<InProcessNotificationCenter>());
INSTANTIATE_TEST_SUITE_P(LinuxSleepNotifications, NotificationCenterContract,
                         on<LinuxSleepNotifications>("unix:path=/nonexistent/bus"));

} // namespace

} // namespace quorvane
