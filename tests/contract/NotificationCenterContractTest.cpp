#include <QCoreApplication>
#include <gmock/gmock.h>
#include <memory>
#include <string>
#include <vector>

#include "platform/InProcessNotificationCenter.h"
#include "platform/linux/power/LinuxSleepNotifications.h"
#include "tests/support/QtApplication.h"

namespace quorvane {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using CenterMaker = std::unique_ptr<NotificationCenter> (*)();

class NotificationCenterContract : public testing::TestWithParam<CenterMaker> {
protected:
    NotificationCenter::Token observe(std::string_view name, const std::string& mark) {
        return m_center->addObserver(name, [this, mark] { m_heard.push_back(mark); });
    }

    QtApplication m_application;
    std::unique_ptr<NotificationCenter> m_center = GetParam()();
    std::vector<std::string> m_heard;
};

TEST_P(NotificationCenterContract, ANoticeReachesItsObserversInTheOrderOfRegistration) {
    observe("a", "first");
    observe("b", "other");
    observe("a", "second");
    m_center->post("a");
    EXPECT_THAT(m_heard, ElementsAre("first", "second"));
}

TEST_P(NotificationCenterContract, ANoticeThatNobodyObservesIsHarmless) {
    m_center->post("a");
    observe("b", "other");
    m_center->post("a");
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
    m_center->removeObserver(token);
    m_center->post("a");
    EXPECT_THAT(m_heard, ElementsAre("kept"));
}

TEST_P(NotificationCenterContract, RemovingAnUnknownTokenIsIgnored) {
    const auto token = observe("a", "gone");
    observe("a", "kept");
    m_center->removeObserver(token);
    m_center->removeObserver(token);
    m_center->removeObserver(0);
    m_center->removeObserver(token + 1000);
    m_center->post("a");
    EXPECT_THAT(m_heard, ElementsAre("kept"));
}

TEST_P(NotificationCenterContract, ABlockMayRemoveItself) {
    NotificationCenter::Token token = 0;
    token = m_center->addObserver("a", [&] {
        m_heard.emplace_back("once");
        m_center->removeObserver(token);
    });
    m_center->post("a");
    m_center->post("a");
    EXPECT_THAT(m_heard, ElementsAre("once"));
}

TEST_P(NotificationCenterContract, ABlockRemovedDuringANoticeDoesNotHearIt) {
    NotificationCenter::Token later = 0;
    m_center->addObserver("a", [&] { m_center->removeObserver(later); });
    later = observe("a", "later");
    m_center->post("a");
    EXPECT_THAT(m_heard, IsEmpty());
}

TEST_P(NotificationCenterContract, ABlockAddedDuringANoticeHearsTheNextOne) {
    bool added = false;
    m_center->addObserver("a", [&] {
        if (!std::exchange(added, true))
            observe("a", "late");
    });
    m_center->post("a");
    EXPECT_THAT(m_heard, IsEmpty());
    m_center->post("a");
    EXPECT_THAT(m_heard, ElementsAre("late"));
}

TEST_P(NotificationCenterContract, AnObserverMayComeBackAfterTheLastOneLeft) {
    m_center->removeObserver(observe("a", "before"));
    observe("a", "after");
    m_center->post("a");
    EXPECT_THAT(m_heard, ElementsAre("after"));
}

std::unique_ptr<NotificationCenter> makeInProcess() {
    return std::make_unique<InProcessNotificationCenter>();
}

std::unique_ptr<NotificationCenter> makeWorkspaceWithoutBus() {
    return std::make_unique<LinuxSleepNotifications>("unix:path=/nonexistent/bus");
}

INSTANTIATE_TEST_SUITE_P(InProcess, NotificationCenterContract, testing::Values(&makeInProcess));
INSTANTIATE_TEST_SUITE_P(LinuxSleepNotifications, NotificationCenterContract,
                         testing::Values(&makeWorkspaceWithoutBus));

} // namespace

} // namespace quorvane
