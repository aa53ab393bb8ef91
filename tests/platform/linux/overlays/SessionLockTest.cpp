#include <gmock/gmock.h>
#include <memory>
#include <string>

#include "tests/platform/linux/overlays/SessionLockFixture.h"

namespace quorvane {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST_F(SessionLockTest, WithoutAnyServiceTheSessionIsNotLocked) {
    watch();
    EXPECT_THAT(changesInAll(), IsEmpty());
    EXPECT_FALSE(m_lock->isLocked());
}

TEST_F(SessionLockTest, TheSessionIsLockedUntilEveryServiceSaysOtherwise) {
    FakeLogindSession logind(m_system.address());
    FakeScreenSaver screenSaver(m_session.address());
    watch();
    settle(logind);
    settle(screenSaver);
    screenSaver.setLocked(true);
    EXPECT_THAT(changes(1), ElementsAre(true));
    logind.setLocked(true);
    settle(logind, 2);
    screenSaver.setLocked(false);
    settle(screenSaver, 3);
    EXPECT_TRUE(m_lock->isLocked());
    logind.setLocked(false);
    EXPECT_THAT(changes(2), ElementsAre(true, false));
    EXPECT_THAT(changesInAll(), ElementsAre(true, false));
}

TEST_F(SessionLockTest, TheLockOfAnotherSessionDoesNotCount) {
    FakeLogindSession logind(m_system.address());
    watch();
    settle(logind);
    logind.announce(true);
    EXPECT_THAT(changesInAll(), IsEmpty());
}

TEST_F(SessionLockTest, ASignalOfAnotherClientDoesNotLock) {
    FakeScreenSaver screenSaver(m_session.address());
    FakeScreenSaver stranger(m_session.address(), true, "gnome", "com.example.Stranger");
    FakeLogindSession logind(m_system.address());
    FakeLogindSession otherStranger(m_system.address(), true, "com.example.Stranger");
    watch();
    settle(screenSaver);
    settle(logind);
    stranger.announce(true);
    otherStranger.announce(true);
    EXPECT_THAT(changesInAll(), IsEmpty());
}

class EachScreenSaverTest : public SessionLockTest,
                            public testing::WithParamInterface<const char*> {};

TEST_P(EachScreenSaverTest, LocksAndUnlocks) {
    FakeScreenSaver screenSaver(m_session.address(), false, GetParam());
    watch();
    settle(screenSaver);
    screenSaver.setLocked(true);
    EXPECT_THAT(changes(1), ElementsAre(true));
    screenSaver.setLocked(false);
    EXPECT_THAT(changes(2), ElementsAre(true, false));
}

INSTANTIATE_TEST_SUITE_P(Desktops, EachScreenSaverTest,
                         testing::Values("freedesktop", "gnome", "cinnamon", "mate", "xfce"),
                         [](const auto& desktop) { return std::string(desktop.param); });

enum class Kind { Logind, ScreenSaver };

/// What does not depend on which service knows of the lock.
class LockingServiceTest : public SessionLockTest, public testing::WithParamInterface<Kind> {
protected:
    void startService(bool locked) {
        if (GetParam() == Kind::Logind)
            m_service = std::make_unique<FakeLogindSession>(m_system.address(), locked);
        else
            m_service = std::make_unique<FakeScreenSaver>(m_session.address(), locked);
    }

    void stopBus() {
        if (GetParam() == Kind::Logind)
            m_system.stop();
        else
            m_session.stop();
    }

    /// With the service, once it has been asked again.
    void restartBus(bool locked) {
        m_service.reset();
        (GetParam() == Kind::Logind ? m_system : m_session).restart();
        startService(locked);
        settle(*m_service);
    }

    std::unique_ptr<FakeLocker> m_service;
};

TEST_P(LockingServiceTest, ALockThatIsThereAlreadyIsReported) {
    startService(true);
    watch();
    EXPECT_FALSE(m_lock->isLocked()) << "the service has not answered yet";
    EXPECT_THAT(changes(1), ElementsAre(true));
    EXPECT_TRUE(m_lock->isLocked());
}

TEST_P(LockingServiceTest, EachChangeIsReportedOnce) {
    startService(false);
    watch();
    settle(*m_service);
    m_service->setLocked(true);
    EXPECT_THAT(changes(1), ElementsAre(true));
    m_service->announce(true);
    settle(*m_service, 3);
    m_service->setLocked(false);
    EXPECT_THAT(changes(2), ElementsAre(true, false));
    EXPECT_THAT(changesInAll(), ElementsAre(true, false));
}

TEST_P(LockingServiceTest, AServiceThatStartsLaterIsAsked) {
    watch();
    EXPECT_THAT(changesInAll(), IsEmpty());
    startService(true);
    EXPECT_THAT(changes(1), ElementsAre(true));
    m_service->setLocked(false);
    EXPECT_THAT(changes(2), ElementsAre(true, false));
}

TEST_P(LockingServiceTest, AServiceThatGoesWhileLockedUnlocks) {
    startService(true);
    watch();
    EXPECT_THAT(changes(1), ElementsAre(true));
    m_service.reset();
    EXPECT_THAT(changes(2), ElementsAre(true, false));
}

TEST_P(LockingServiceTest, ABusThatGoesWhileLockedUnlocks) {
    startService(true);
    watch();
    EXPECT_THAT(changes(1), ElementsAre(true));
    stopBus();
    EXPECT_THAT(changes(2), ElementsAre(true, false));
}

TEST_P(LockingServiceTest, ASessionLockedWhileTheBusWasAwayIsReportedWhenItIsBack) {
    startService(false);
    watch();
    settle(*m_service);
    stopBus();
    EXPECT_THAT(changesInAll(), IsEmpty());
    restartBus(true);
    EXPECT_THAT(changes(1), ElementsAre(true));
    m_service->setLocked(false);
    EXPECT_THAT(changes(2), ElementsAre(true, false));
}

TEST_P(LockingServiceTest, ABusThatStartsLaterIsJoined) {
    stopBus();
    watch();
    EXPECT_THAT(changesInAll(), IsEmpty());
    restartBus(true);
    EXPECT_THAT(changes(1), ElementsAre(true));
}

TEST_P(LockingServiceTest, AServiceThatDoesNotAnswerLeavesTheSessionUnlocked) {
    startService(true);
    m_service->setAnswers(false);
    watch();
    settle(*m_service);
    EXPECT_THAT(changesInAll(), IsEmpty());
    m_service->setAnswers(true);
    m_service->announce(true);
    EXPECT_THAT(changes(1), ElementsAre(true));
}

TEST_P(LockingServiceTest, OnlyTheLastAnswerCounts) {
    startService(true);
    watch();
    EXPECT_THAT(changes(1), ElementsAre(true));
    m_service->setAnswers(false);
    m_service->setLocked(false);
    settle(*m_service, 2);
    EXPECT_TRUE(m_lock->isLocked());
    m_service->setAnswers(true);
    m_service->announce(false);
    EXPECT_THAT(changes(2), ElementsAre(true, false));
}

INSTANTIATE_TEST_SUITE_P(Services, LockingServiceTest,
                         testing::Values(Kind::Logind, Kind::ScreenSaver), [](const auto& kind) {
                             return kind.param == Kind::Logind ? "Logind" : "ScreenSaver";
                         });

} // namespace

} // namespace quorvane
