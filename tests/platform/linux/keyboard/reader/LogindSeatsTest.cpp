#include <QDBusVariant>
#include <fcntl.h>
#include <map>
#include <optional>
#include <poll.h>
#include <vector>

#include <gmock/gmock.h>

#include "platform/linux/common/FileDescriptor.h"
#include "platform/linux/keyboard/reader/Seats.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/QtApplication.h"
#include "tests/support/SeatFiles.h"
#include "tests/support/SleepServices.h"
#include "tests/support/Waiting.h"

namespace quorvane {

namespace {

constexpr uid_t person = 12345;

/// A fake logind that knows which sessions are locked.
class FakeLogindLocks final : public QDBusVirtualObject {
public:
    explicit FakeLogindLocks(const std::string& address) : m_service(address, logind) {
        m_service.bus().registerVirtualObject(folder, this, QDBusConnection::SubPath);
    }

    ~FakeLogindLocks() override { m_service.bus().unregisterObject(folder); }

    /// Sends a signal that says nothing, as what it says is not to be used.
    void setLocked(int session, bool isLocked) {
        m_locked[pathOf(session)] = isLocked;
        auto signal = QDBusMessage::createSignal(pathOf(session), "org.freedesktop.DBus.Properties",
                                                 "PropertiesChanged");
        signal.setArguments({interface, QVariantMap(), QStringList("LockedHint")});
        m_service.send(signal);
    }

    [[nodiscard]] int questions() const { return m_questions; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        if (message.arguments() != QVariantList{interface, "LockedHint"})
            return false;
        ++m_questions;
        const bool isLocked = m_locked[message.path()];
        return connection.send(message.createReply(QVariant::fromValue(QDBusVariant(isLocked))));
    }

    [[nodiscard]] QString introspect(const QString&) const override { return {}; }

private:
    static QString pathOf(int session) {
        return QStringLiteral("%1/_3%2").arg(folder).arg(session);
    }

    inline static const QString logind = QStringLiteral("org.freedesktop.login1");
    inline static const QString folder = QStringLiteral("/org/freedesktop/login1/session");
    inline static const QString interface = QStringLiteral("org.freedesktop.login1.Session");

    BusService m_service;
    std::map<QString, bool> m_locked;
    int m_questions = 0;
};

class LogindSeatsTest : public testing::Test {
protected:
    /// A child process, which has the files for the machine's own, watches from now on.
    void watch() {
        std::array<int, 2> ends{};
        ASSERT_EQ(pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK), 0);
        m_reports = FileDescriptor(ends[0]);
        const FileDescriptor output(ends[1]);
        m_watcher.emplace([this, &output] { return report(output.get()); });
        ASSERT_TRUE(waitUntil([this] { return !history().empty(); }));
    }

    /// Sends the first letter of what it hears at each change: a seat or none.
    int report(int output) const {
        m_files.enter();
        LogindSeats seats(person, m_bus.address());
        for (std::string before;;) {
            const auto now = seats.update();
            const std::string letter = now == std::set<std::string>{"seat0"} ? "s"
                                       : now.empty()                         ? "-"
                                                                             : "?";
            if (letter != before && write(output, letter.data(), 1) != 1)
                return EXIT_FAILURE;
            before = letter;
            auto polled = seats.polled();
            poll(polled.data(), polled.size(), -1);
        }
    }

    /// All reports so far.
    [[nodiscard]] const std::string& history() {
        QCoreApplication::processEvents();
        char letter = 0;
        while (read(m_reports.get(), &letter, 1) == 1)
            m_history += letter;
        return m_history;
    }

    [[nodiscard]] bool becomes(const std::string& reports) {
        return waitUntil([&] { return history() == reports; });
    }

    static void settle(const FakeLogindLocks& logind, int questions) {
        ASSERT_TRUE(waitUntil([&] { return logind.questions() >= questions; }));
        waitFor(50ms);
    }

    QtApplication m_application;
    SeatFiles m_files;
    PrivateBus m_bus;
    FileDescriptor m_reports;
    std::string m_history;
    std::optional<ChildProcess> m_watcher;
};

TEST_F(LogindSeatsTest, AUserWithoutASessionIsAtNoSeat) {
    m_files.setSessions(23456, {"1"}, "1");
    watch();
    EXPECT_EQ(history(), "-");
}

TEST_F(LogindSeatsTest, AUserIsAtTheSeatWhileTheirSessionIsInFront) {
    m_files.setSessions(person, {"1"}, "1");
    watch();
    EXPECT_EQ(history(), "s");
    m_files.setSessions(person, {"1"}, "");
    EXPECT_TRUE(becomes("s-"));
    m_files.setSessions(person, {"1"}, "1");
    EXPECT_TRUE(becomes("s-s"));
}

TEST_F(LogindSeatsTest, ALockedSessionIsNotHeardUntilItIsUnlocked) {
    FakeLogindLocks logind(m_bus.address());
    m_files.setSessions(person, {"1"}, "1");
    watch();
    settle(logind, 1);
    logind.setLocked(1, true);
    EXPECT_TRUE(becomes("s-"));
    logind.setLocked(1, false);
    EXPECT_TRUE(becomes("s-s"));
}

TEST_F(LogindSeatsTest, ASessionThatIsLockedFromTheStartIsNotHeard) {
    FakeLogindLocks logind(m_bus.address());
    logind.setLocked(1, true);
    m_files.setSessions(person, {"1"}, "1");
    watch();
    EXPECT_TRUE(waitUntil([this] { return history().ends_with('-'); }));
}

TEST_F(LogindSeatsTest, TheLockOfASessionInTheBackgroundDoesNotCount) {
    FakeLogindLocks logind(m_bus.address());
    m_files.setSessions(person, {"1", "2"}, "1");
    watch();
    settle(logind, 2);
    logind.setLocked(2, true);
    settle(logind, 4);
    logind.setLocked(2, false);
    settle(logind, 6);
    logind.setLocked(1, true);
    EXPECT_TRUE(becomes("s-"));
}

TEST_F(LogindSeatsTest, ALockedSessionThatComesToFrontIsNeverHeard) {
    FakeLogindLocks logind(m_bus.address());
    m_files.setSessions(person, {"1"}, "");
    watch();
    settle(logind, 1);
    logind.setLocked(1, true);
    settle(logind, 2);
    m_files.setSessions(person, {"1"}, "1");
    waitFor(50ms);
    logind.setLocked(1, false);
    EXPECT_TRUE(becomes("-s"));
    logind.setLocked(1, true);
    EXPECT_TRUE(becomes("-s-"));
}

TEST_F(LogindSeatsTest, ANewSessionIsAsked) {
    FakeLogindLocks logind(m_bus.address());
    logind.setLocked(2, true);
    m_files.setSessions(person, {"1"}, "1");
    watch();
    settle(logind, 1);
    m_files.setSessions(person, {"1", "2"}, "1");
    settle(logind, 2);
    m_files.setSessions(person, {"1", "2"}, "2");
    EXPECT_TRUE(becomes("s-"));
}

TEST_F(LogindSeatsTest, WithoutTheBusASessionCountsAsUnlockedAndIsStillWatched) {
    {
        FakeLogindLocks logind(m_bus.address());
        logind.setLocked(1, true);
        m_files.setSessions(person, {"1"}, "1");
        watch();
        EXPECT_TRUE(waitUntil([this] { return history().ends_with('-'); }));
        m_history.clear();
        m_bus.stop();
        EXPECT_TRUE(becomes("s"));
    }
    m_files.setSessions(person, {"1"}, "");
    EXPECT_TRUE(becomes("s-"));
}

} // namespace

} // namespace quorvane
