#include <optional>
#include <string>
#include <utility>

#include <gmock/gmock.h>

#include "platform/linux/keyboard/LinuxEventTapService.h"
#include "tests/support/Environment.h"
#include "tests/support/OpenFiles.h"
#include "tests/support/QtApplication.h"
#include "tests/support/VirtualDisplay.h"
#include "tests/support/Waiting.h"

namespace quorvane {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Heard = std::pair<TapEventType, std::int64_t>;

// Global, because the callback has no context argument.
std::vector<Heard> heardEvents;

const TapEvent& hear(const TapEvent& event) {
    heardEvents.emplace_back(event.type, event.keyboardAutorepeat);
    return event;
}

constexpr Heard keyDown{TapEventType::KeyDown, 0};
constexpr Heard repeatedKeyDown{TapEventType::KeyDown, 1};
constexpr Heard keyUp{TapEventType::KeyUp, 0};
constexpr Heard flagsChanged{TapEventType::FlagsChanged, 0};

constexpr std::uint8_t letter = 38;
constexpr xcb_keysym_t shiftSymbol = 0xFFE1;

class LinuxEventTapServiceTest : public testing::Test {
protected:
    LinuxEventTapServiceTest() { heardEvents.clear(); }

    [[nodiscard]] std::shared_ptr<EventTap> createTap() {
        LinuxEventTapService taps(m_reader);
        return taps.createTap(TapLocation::Session, TapPlacement::HeadInsert,
                              TapOptions::ListenOnly, ~std::uint64_t{0}, &hear);
    }

    void startToListen() {
        m_tap = createTap();
        ASSERT_TRUE(m_tap);
        m_source = m_tap->createRunLoopSource(0);
        m_source->addToRunLoop();
        m_tap->enable(true);
    }

    std::vector<Heard> heard() {
        m_display.sync();
        for (int turn = 0; turn < 3; ++turn)
            QCoreApplication::processEvents();
        return std::exchange(heardEvents, {});
    }

    QtApplication m_application;
    EnvironmentVariable m_noWayland{"WAYLAND_DISPLAY", std::nullopt};
    VirtualDisplay m_display;
    KeyReaderProcess m_reader{[] { return KeyReaderPlaces(); },
                              [] { return std::vector<std::filesystem::path>(); }};
    std::shared_ptr<EventTap> m_tap;
    std::shared_ptr<TapSource> m_source;
};

TEST_F(LinuxEventTapServiceTest, EveryModifierAndLockOfTheUsualKeymapOnlyChangesFlags) {
    startToListen();
    // Shift, Control, Alt and Super on both sides, Caps Lock, Num Lock, Scroll Lock.
    for (const std::uint8_t key :
         std::initializer_list<std::uint8_t>{50, 62, 37, 105, 64, 108, 133, 134, 66, 77, 78}) {
        m_display.press(key);
        m_display.release(key);
        EXPECT_THAT(heard(), ElementsAre(flagsChanged, flagsChanged)) << "key " << int{key};
    }
}

TEST_F(LinuxEventTapServiceTest, AKeyRemappedToAModifierIsOne) {
    startToListen();
    m_display.press(letter);
    m_display.release(letter);
    EXPECT_THAT(heard(), ElementsAre(keyDown, keyUp));
    m_display.remap(letter, shiftSymbol);
    EXPECT_THAT(heard(), IsEmpty());
    m_display.press(letter);
    m_display.release(letter);
    EXPECT_THAT(heard(), ElementsAre(flagsChanged, flagsChanged));
}

TEST_F(LinuxEventTapServiceTest, SymbolsDecideWhichKeysAreModifiers) {
    startToListen();
    const auto typedAs = [this](xcb_keysym_t symbol) {
        m_display.remap(letter, symbol);
        EXPECT_THAT(heard(), IsEmpty());
        m_display.press(letter);
        m_display.release(letter);
        return heard();
    };
    // Shift_L, Shift_Lock, Hyper_R, ISO_Lock, ISO_Level3_Shift, ISO_Level5_Lock, Mode_switch,
    // Num_Lock, Scroll_Lock, XF86Fn, XF86FnRightShift.
    for (const xcb_keysym_t modifier : {0xFFE1U, 0xFFE6U, 0xFFEEU, 0xFE01U, 0xFE03U, 0xFE13U,
                                        0xFF7EU, 0xFF7FU, 0xFF14U, 0x100811D0U, 0x100811E5U})
        EXPECT_THAT(typedAs(modifier), ElementsAre(flagsChanged, flagsChanged)) << modifier;
    // Pause, Sys_Req, KP_Space, a dead grave accent, XF86Sleep.
    for (const xcb_keysym_t key : {0xFF13U, 0xFF15U, 0xFF80U, 0xFE50U, 0x1008FF2FU})
        EXPECT_THAT(typedAs(key), ElementsAre(keyDown, keyUp)) << key;
}

TEST_F(LinuxEventTapServiceTest, ATapHasOneSource) {
    startToListen();
    EXPECT_EQ(m_tap->createRunLoopSource(0), m_source);
}

TEST_F(LinuxEventTapServiceTest, KeysAreHeardWhileAnotherProgramHasGrabbedTheKeyboard) {
    startToListen();
    m_display.grabKeyboard();
    m_display.press(letter);
    EXPECT_THAT(heard(), ElementsAre(keyDown));
}

TEST_F(LinuxEventTapServiceTest, AKeyThatWasDownBeforeIsNoPressUntilItIsReleased) {
    m_display.press(letter);
    m_display.sync();
    startToListen();
    m_display.press(letter);
    EXPECT_THAT(heard(), ElementsAre(repeatedKeyDown));
    m_display.release(letter);
    m_display.press(letter);
    EXPECT_THAT(heard(), ElementsAre(keyUp, keyDown));
}

TEST_F(LinuxEventTapServiceTest, NothingIsOpenBeforeOrAfterTheTap) {
    QCoreApplication::processEvents();
    const auto before = openDescriptors();
    const LinuxEventTapService taps(m_reader);
    EXPECT_EQ(openDescriptors(), before);
    startToListen();
    EXPECT_EQ(openDescriptors().size(), before.size() + 1);
    m_tap.reset();
    m_source.reset();
    EXPECT_EQ(openDescriptors(), before);
}

TEST_F(LinuxEventTapServiceTest, ASourceMayOutliveItsTap) {
    QCoreApplication::processEvents();
    const auto before = openDescriptors();
    startToListen();
    m_tap.reset();
    m_source->removeFromRunLoop();
    m_source->addToRunLoop();
    m_source.reset();
    EXPECT_EQ(openDescriptors(), before);
}

TEST_F(LinuxEventTapServiceTest, ADisplayServerThatEndsIsIgnoredSilently) {
    startToListen();
    testing::internal::CaptureStderr();
    m_display.end();
    // Once the server has ended, the connection stays readable.
    int turns = 0;
    waitUntil([&turns] { return ++turns > 20; });
    m_source->removeFromRunLoop();
    m_source->addToRunLoop();
    QCoreApplication::processEvents();
    m_tap->enable(false);
    m_tap.reset();
    m_source.reset();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_THAT(heardEvents, IsEmpty());
}

TEST_F(LinuxEventTapServiceTest, WithoutAServerThereIsNoTap) {
    m_display.end();
    EXPECT_FALSE(createTap());
}

TEST_F(LinuxEventTapServiceTest, AWaylandSessionIsNotHeardThroughXwayland) {
    const EnvironmentVariable wayland("WAYLAND_DISPLAY", "wayland-0");
    QCoreApplication::processEvents();
    const auto before = openDescriptors();
    EXPECT_FALSE(createTap());
    EXPECT_EQ(openDescriptors(), before);
}

bool isX11SessionWith(const std::optional<std::string>& x11,
                      const std::optional<std::string>& wayland) {
    const EnvironmentVariable display("DISPLAY", x11);
    const EnvironmentVariable waylandDisplay("WAYLAND_DISPLAY", wayland);
    return isX11Session();
}

TEST(SessionTypeTest, ASessionWithAnXServerAlone) {
    EXPECT_TRUE(isX11SessionWith(":0", std::nullopt));
    EXPECT_TRUE(isX11SessionWith(":0", ""));
}

TEST(SessionTypeTest, AWaylandSessionIsNoneWithOrWithoutAnXServer) {
    EXPECT_FALSE(isX11SessionWith(":0", "wayland-0"));
    EXPECT_FALSE(isX11SessionWith(std::nullopt, "wayland-0"));
    EXPECT_FALSE(isX11SessionWith("", "wayland-0"));
}

TEST(SessionTypeTest, WithoutADisplayThereIsNoSession) {
    EXPECT_FALSE(isX11SessionWith(std::nullopt, std::nullopt));
    EXPECT_FALSE(isX11SessionWith("", std::nullopt));
}

} // namespace

} // namespace quorvane
