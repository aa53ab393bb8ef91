#include <cstdint>
#include <optional>
#include <vector>

#include "platform/linux/keyboard/LinuxEventTapService.h"
#include "platform/simulated/SimulatedEventTapService.h"
#include "tests/contract/EventTapContract.h"
#include "tests/support/Environment.h"
#include "tests/support/QtApplication.h"
#include "tests/support/StandInReader.h"
#include "tests/support/VirtualDisplay.h"
#include "tests/support/Waiting.h"

namespace quorvane {

namespace {

class SimulatedBackend final : public EventTapBackend {
public:
    EventTapService& service() override { return m_taps; }

    void pressKey() override { m_taps.pressKey(); }

    void releaseKey() override { m_taps.send({.type = TapEventType::KeyUp}); }

    void repeatKey() override {
        m_taps.send({.type = TapEventType::KeyDown, .keyboardAutorepeat = 1});
    }

    void pressShift() override { m_taps.send({.type = TapEventType::FlagsChanged}); }

    void releaseShift() override { pressShift(); }

private:
    SimulatedEventTapService m_taps;
};

/// Handles the events that are pending.
void processEvents() {
    for (int turn = 0; turn < 3; ++turn)
        QCoreApplication::processEvents();
}

class X11Backend final : public EventTapBackend {
public:
    EventTapService& service() override { return m_taps; }

    void pressKey() override {
        sendNow([this] { m_display.press(letter); });
    }

    void releaseKey() override {
        sendNow([this] { m_display.release(letter); });
    }

    // Pressing a key that is down makes the X server send a repeat.
    void repeatKey() override { pressKey(); }

    void pressShift() override {
        sendNow([this] { m_display.press(shift); });
    }

    void releaseShift() override {
        sendNow([this] { m_display.release(shift); });
    }

    void settle() override {
        m_display.sync();
        processEvents();
    }

private:
    static constexpr std::uint8_t letter = 38;
    static constexpr std::uint8_t shift = 50;

    // Events go to the taps that are enabled at delivery, so they are delivered at once.
    template <typename Input>
    void sendNow(const Input& input) {
        input();
        settle();
    }

    QtApplication m_application;
    EnvironmentVariable m_noWayland{"WAYLAND_DISPLAY", std::nullopt};
    VirtualDisplay m_display;
    KeyReaderProcess m_reader;
    LinuxEventTapService m_taps{m_reader};
};

/// A Wayland session with a stand-in for the key reader, which passes on presses only.
class ReaderBackend final : public EventTapBackend {
public:
    EventTapService& service() override { return m_taps; }

    void pressKey() override {
        waitUntil([this] { return m_reader.isRunning(); });
        m_standIn.send("k");
        waitUntil([this] { return m_arrived > 0; });
        m_arrived = 0;
    }

    void releaseKey() override {}

    void repeatKey() override {}

    void pressShift() override {}

    void releaseShift() override {}

private:
    QtApplication m_application;
    EnvironmentVariable m_wayland{"WAYLAND_DISPLAY", "wayland-0"};
    StandInReader m_standIn;
    KeyReaderProcess m_reader{
        [this] { return KeyReaderPlaces{.own = m_standIn.program(), .installed = {}}; },
        [this] { return std::vector{m_standIn.readableNode()}; }};
    LinuxEventTapService m_taps{m_reader};
    int m_arrived = 0;
    Subscription m_counted = m_reader.listen([this] { ++m_arrived; });
};

INSTANTIATE_TEST_SUITE_P(Simulated, EventTapContract, on<SimulatedBackend>());
INSTANTIATE_TEST_SUITE_P(LinuxX11, EventTapContract, on<X11Backend>());
INSTANTIATE_TEST_SUITE_P(LinuxReader, EventTapContract, on<ReaderBackend>());
INSTANTIATE_TEST_SUITE_P(Simulated, EventKindsContract, on<SimulatedBackend>());
INSTANTIATE_TEST_SUITE_P(LinuxX11, EventKindsContract, on<X11Backend>());

} // namespace

} // namespace quorvane
