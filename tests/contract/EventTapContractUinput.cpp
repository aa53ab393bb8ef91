// Runs the contract with the key reader on a keyboard made through /dev/uinput and found by udev.
// The cases fail without either, and for a user who may not read keyboards.

#include <fcntl.h>
#include <linux/uinput.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <stdexcept>
#include <string>

#include "base/NonCopyable.h"
#include "platform/linux/keyboard/KeyboardNodes.h"
#include "platform/linux/keyboard/LinuxEventTapService.h"
#include "tests/contract/EventTapContract.h"
#include "tests/support/Environment.h"
#include "tests/support/KeyboardPipe.h"
#include "tests/support/QtApplication.h"
#include "tests/support/Waiting.h"

namespace quorvane {

namespace {

/// A keyboard without autorepeat, made through /dev/uinput.
class UinputKeyboard : NonCopyable {
public:
    UinputKeyboard() : m_descriptor(open("/dev/uinput", O_WRONLY | O_CLOEXEC)) {
        ioctl(m_descriptor, UI_SET_EVBIT, EV_KEY);
        for (int key = KEY_ESC; key <= KEY_F12; ++key)
            ioctl(m_descriptor, UI_SET_KEYBIT, key);
        uinput_setup setup{};
        setup.id.bustype = BUS_VIRTUAL;
        std::strncpy(std::begin(setup.name), "contract keyboard", sizeof setup.name - 1);
        if (ioctl(m_descriptor, UI_DEV_SETUP, &setup) < 0 || ioctl(m_descriptor, UI_DEV_CREATE) < 0)
            throw std::runtime_error("the kernel makes no keyboard");
        if (!waitUntil(&isReadable))
            throw std::runtime_error(
                "udev does not find the keyboard, or the user may not read it");
    }

    ~UinputKeyboard() {
        close(m_descriptor);
        // So that the next case finds only its own.
        waitUntil([] { return listKeyboardNodes().empty(); });
    }

    void send(int key, int value) const {
        const std::array events{KeyboardPipe::make(EV_KEY, key, value),
                                KeyboardPipe::make(EV_SYN, SYN_REPORT, 0)};
        if (write(m_descriptor, events.data(), sizeof events) != sizeof events)
            throw std::runtime_error("the keyboard does not take this");
    }

private:
    /// At first udev may still know the keyboard before this one, of the same number.
    static bool isReadable() {
        const auto nodes = listKeyboardNodes();
        return std::any_of(nodes.begin(), nodes.end(), canReadKeyboard);
    }

    int m_descriptor;
};

class UinputBackend final : public EventTapBackend {
public:
    EventTapService& service() override { return m_taps; }

    void pressKey() override { send(KEY_A, 1); }

    void releaseKey() override { send(KEY_A, 0); }

    void repeatKey() override { send(KEY_A, 2); }

    void pressShift() override { send(KEY_LEFTSHIFT, 1); }

    void releaseShift() override { send(KEY_LEFTSHIFT, 0); }

private:
    /// Events go to the taps that are enabled at delivery, so they are delivered at once.
    void send(int key, int value) {
        waitUntil([this] { return m_reader.isRunning(); });
        // It does not tell when it has opened the keyboard, or closed it.
        waitFor(200ms);
        m_keyboard.send(key, value);
        waitFor(50ms);
    }

    QtApplication m_application;
    EnvironmentVariable m_wayland{"WAYLAND_DISPLAY", "wayland-0"};
    UinputKeyboard m_keyboard;
    KeyReaderProcess m_reader;
    LinuxEventTapService m_taps{m_reader};
};

INSTANTIATE_TEST_SUITE_P(LinuxUinput, EventTapContract, on<UinputBackend>());
// It hears nothing but presses.
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(EventKindsContract);

} // namespace

} // namespace quorvane
