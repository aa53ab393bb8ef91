#include <cstdint>
#include <linux/input.h>
#include <optional>

#include "platform/linux/keyboard/EvdevKeyReader.h"
#include "platform/linux/keyboard/LinuxEventTapService.h"
#include "platform/simulated/SimulatedEventTapService.h"
#include "tests/contract/EventTapContract.h"
#include "tests/support/KeyboardPipe.h"
#include "tests/support/PluggedKeyboards.h"
#include "tests/support/QtApplication.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/VirtualDisplay.h"

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
    LinuxEventTapService m_taps;
};

/// Taps on a keyboard whose event node is a pipe. Only one reader of a pipe gets each event, so
/// each tap has its own.
class PipeTaps final : public EventTapService {
public:
    [[nodiscard]] std::shared_ptr<EventTap> createTap(TapLocation, TapPlacement, TapOptions,
                                                      std::uint64_t events,
                                                      TapCallback callback) override {
        const auto name = "event" + std::to_string(m_keyboards.size());
        m_keyboards.push_back(std::make_unique<KeyboardPipe>(m_folder.path() / name));
        m_plugged.push_back(std::make_unique<PluggedKeyboards>());
        m_plugged.back()->plugIn(m_keyboards.back()->node());
        return LinuxEventTap::create(events, callback, [this](KeyEventReader::Sink sink) {
            return EvdevKeyReader::open(
                std::make_unique<PluggedKeyboards::Nodes>(*m_plugged.back()), std::move(sink));
        });
    }

    void send(int key, int value) {
        for (const auto& keyboard : m_keyboards)
            keyboard->send(key, value);
        processEvents();
    }

private:
    TemporaryFolder m_folder;
    std::vector<std::unique_ptr<KeyboardPipe>> m_keyboards;
    std::vector<std::unique_ptr<PluggedKeyboards>> m_plugged;
};

class EvdevBackend final : public EventTapBackend {
public:
    EventTapService& service() override { return m_taps; }

    void pressKey() override { m_taps.send(KEY_A, 1); }

    void releaseKey() override { m_taps.send(KEY_A, 0); }

    void repeatKey() override { m_taps.send(KEY_A, 2); }

    void pressShift() override { m_taps.send(KEY_LEFTSHIFT, 1); }

    void releaseShift() override { m_taps.send(KEY_LEFTSHIFT, 0); }

private:
    QtApplication m_application;
    PipeTaps m_taps;
};

INSTANTIATE_TEST_SUITE_P(Simulated, EventTapContract, on<SimulatedBackend>());
INSTANTIATE_TEST_SUITE_P(LinuxX11, EventTapContract, on<X11Backend>());
INSTANTIATE_TEST_SUITE_P(LinuxEvdev, EventTapContract, on<EvdevBackend>());

} // namespace

} // namespace quorvane
