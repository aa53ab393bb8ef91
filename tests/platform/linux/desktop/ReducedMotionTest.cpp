#include <QDBusVariant>
#include <chrono>
#include <gmock/gmock.h>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/linux/desktop/ReducedMotion.h"
#include "tests/support/Environment.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/QtApplication.h"
#include "tests/support/SleepServices.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Waiting.h"

namespace quorvane {

namespace {

using testing::ElementsAre;

const QString portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString settingsInterface = QStringLiteral("org.freedesktop.portal.Settings");
const QString desktopSettings = QStringLiteral("org.gnome.desktop.interface");
const QString animations = QStringLiteral("enable-animations");

/// The desktop's settings portal.
class FakePortal final : public QDBusVirtualObject {
public:
    FakePortal(const std::string& address, QVariant answer,
               const QString& name = QStringLiteral("org.freedesktop.portal.Desktop"))
        : m_service(address, name), m_answer(std::move(answer)) {
        m_service.bus().registerVirtualObject(portalPath, this);
    }

    ~FakePortal() override { m_service.bus().unregisterObject(portalPath); }

    void change(const QString& group, const QString& key, const QVariant& value) {
        auto message = QDBusMessage::createSignal(portalPath, settingsInterface, "SettingChanged");
        message << group << key << QVariant::fromValue(QDBusVariant(value));
        m_service.send(message);
    }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        if (message.interface() != settingsInterface || message.member() != QLatin1String("Read"))
            return false;
        for (const QVariant& argument : message.arguments())
            m_arguments.push_back(argument.toString().toStdString());
        // As the portal does: a variant in a variant.
        const QDBusVariant inner(m_answer);
        return connection.send(
            message.createReply(QVariant::fromValue(QDBusVariant(QVariant::fromValue(inner)))));
    }

    [[nodiscard]] QString introspect(const QString&) const override { return {}; }

    [[nodiscard]] const std::vector<std::string>& arguments() const { return m_arguments; }

private:
    BusService m_service;
    QVariant m_answer;
    std::vector<std::string> m_arguments;
};

class ReducedMotionTest : public testing::Test {
protected:
    void writeSettings(const std::string& folder, const std::string& text) const {
        m_config.write(folder + "/settings.ini", text);
    }

    void makeSetting() { m_setting = std::make_unique<ReducedMotion>(m_reducesMotion); }

    /// Makes the setting and waits for this reply of the portal.
    void makeSettingWithPortal(const QVariant& animationsEnabled) {
        m_portal = std::make_unique<FakePortal>(m_bus.address(), animationsEnabled);
        makeSetting();
        ASSERT_TRUE(waitUntil([this] { return !m_portal->arguments().empty(); }));
        waitFor(50ms);
    }

    [[nodiscard]] bool becomes(bool reduces) const {
        return waitUntil([&] { return m_reducesMotion.get() == reduces; });
    }

    QtApplication m_application;
    PrivateBus m_bus;
    EnvironmentVariable m_address{"DBUS_SESSION_BUS_ADDRESS", m_bus.address()};
    TemporaryFolder m_config;
    EnvironmentVariable m_home{"XDG_CONFIG_HOME", m_config.path().string()};
    Observable<bool> m_reducesMotion;
    std::unique_ptr<FakePortal> m_portal;
    std::unique_ptr<ReducedMotion> m_setting;
};

TEST_F(ReducedMotionTest, WithoutAnySettingMotionIsNotReduced) {
    makeSetting();
    waitFor(50ms);
    EXPECT_FALSE(m_reducesMotion.get());
}

TEST_F(ReducedMotionTest, WithoutAPortalTheGTKSettingsFileIsRead) {
    writeSettings("gtk-3.0", "[Settings]\ngtk-enable-animations=0\n");
    makeSetting();
    EXPECT_TRUE(m_reducesMotion.get());
    writeSettings("gtk-3.0", "[Settings]\ngtk-enable-animations=true\n");
    makeSetting();
    EXPECT_FALSE(m_reducesMotion.get());
}

TEST_F(ReducedMotionTest, TheNewerSettingsFileWinsOverTheOlder) {
    writeSettings("gtk-4.0", "[Settings]\ngtk-enable-animations=false\n");
    writeSettings("gtk-3.0", "[Settings]\ngtk-enable-animations=true\n");
    makeSetting();
    EXPECT_TRUE(m_reducesMotion.get());
}

TEST_F(ReducedMotionTest, AFileWithoutTheSettingIsSkipped) {
    writeSettings("gtk-4.0", "[Settings]\ngtk-theme-name=Any\n[Other]\ngtk-enable-animations=1\n");
    writeSettings("gtk-3.0", "[Settings]\ngtk-enable-animations=0\n");
    makeSetting();
    EXPECT_TRUE(m_reducesMotion.get());
}

TEST_F(ReducedMotionTest, TheAnimationSettingIsReadFromThePortal) {
    makeSettingWithPortal(false);
    EXPECT_THAT(m_portal->arguments(),
                ElementsAre("org.gnome.desktop.interface", "enable-animations"));
    EXPECT_TRUE(m_reducesMotion.get());
}

TEST_F(ReducedMotionTest, ThePortalWinsOverAnyFile) {
    writeSettings("gtk-4.0", "[Settings]\ngtk-enable-animations=0\n");
    makeSettingWithPortal(true);
    EXPECT_FALSE(m_reducesMotion.get());
}

TEST_F(ReducedMotionTest, AnAnswerThatIsNotABooleanIsIgnored) {
    writeSettings("gtk-4.0", "[Settings]\ngtk-enable-animations=0\n");
    makeSettingWithPortal("true");
    EXPECT_TRUE(m_reducesMotion.get());
}

TEST_F(ReducedMotionTest, AChangeOfTheSettingIsFollowed) {
    makeSettingWithPortal(true);
    m_portal->change(desktopSettings, animations, false);
    EXPECT_TRUE(becomes(true));
    m_portal->change(desktopSettings, animations, true);
    EXPECT_TRUE(becomes(false));
}

TEST_F(ReducedMotionTest, ChangesOfOtherSettingsAreIgnored) {
    makeSettingWithPortal(true);
    m_portal->change(desktopSettings, "overlay-scrolling", false);
    m_portal->change("org.gnome.desktop.sound", animations, false);
    m_portal->change(desktopSettings, animations, 0);
    waitFor(50ms);
    EXPECT_FALSE(m_reducesMotion.get());
    // This one arrives after the other three.
    m_portal->change(desktopSettings, animations, false);
    EXPECT_TRUE(becomes(true));
}

TEST_F(ReducedMotionTest, SignalsOfOtherServicesAreIgnored) {
    makeSettingWithPortal(true);
    FakePortal stranger(m_bus.address(), false, "com.example.Stranger");
    stranger.change(desktopSettings, animations, false);
    waitFor(50ms);
    EXPECT_FALSE(m_reducesMotion.get());
}

TEST_F(ReducedMotionTest, APortalThatStartsLaterIsAsked) {
    makeSetting();
    waitFor(50ms);
    m_portal = std::make_unique<FakePortal>(m_bus.address(), false);
    EXPECT_TRUE(becomes(true));
}

TEST_F(ReducedMotionTest, ABusThatFreezesBlocksNothing) {
    using Clock = std::chrono::steady_clock;
    m_portal = std::make_unique<FakePortal>(m_bus.address(), false);
    m_bus.freeze();
    const auto start = Clock::now();
    makeSetting();
    m_setting.reset();
    makeSetting();
    EXPECT_LT(Clock::now() - start, 100ms);
    waitFor(50ms);
    EXPECT_FALSE(m_reducesMotion.get());
    m_bus.thaw();
    EXPECT_TRUE(becomes(true));
}

TEST_F(ReducedMotionTest, ABusThatRestartsIsJoinedAgain) {
    makeSettingWithPortal(true);
    m_bus.stop();
    waitFor(50ms);
    m_portal.reset();
    m_bus.restart();
    m_portal = std::make_unique<FakePortal>(m_bus.address(), false);
    EXPECT_TRUE(becomes(true));
}

} // namespace

} // namespace quorvane
