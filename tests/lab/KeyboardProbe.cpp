// What becomes of listening to the keyboards on this machine, for a user who may lack the right to.
//
//     keyboard_probe effect    arms the keyboard effect, and tells what it asks and what it is
//     keyboard_probe tap       opens a tap, and tells of every key that goes down
//
// Ends with standard input.

#include <QCoreApplication>
#include <QSocketNotifier>
#include <iostream>
#include <string_view>
#include <unistd.h>

#include "effects/keyboard/KeyboardCrackManager.h"
#include "platform/linux/LinuxPlatform.h"
#include "tests/support/ExchangedPlatform.h"

namespace quorvane {

namespace {

void tell(std::string_view what, bool answer) {
    std::cout << what << (answer ? " yes" : " no") << std::endl;
}

/// The machine's own, telling of every question.
class OverheardAccessibility final : public Accessibility {
public:
    explicit OverheardAccessibility(Accessibility& real) : m_real(real) {}

    [[nodiscard]] bool isProcessTrusted() const override {
        const bool answer = m_real.isProcessTrusted();
        tell("trusted", answer);
        return answer;
    }

    bool isProcessTrustedWithOptions(bool prompt) override {
        const bool answer = m_real.isProcessTrustedWithOptions(prompt);
        tell(prompt ? "trusted, with a prompt" : "trusted, without a prompt", answer);
        return answer;
    }

private:
    Accessibility& m_real;
};

void runUntilInputEnds() {
    QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, &QCoreApplication::quit);
    QCoreApplication::exec();
}

int probeEffect(const Platform& platform) {
    OverheardAccessibility accessibility(platform.accessibility);
    const auto manager =
        KeyboardCrackManager::create(exchange(platform, {.accessibility = &accessibility}));
    const auto told = manager->isActive().observe([&] { tell("active", manager->isActive()); });
    manager->start();
    std::cout << "started" << std::endl;
    runUntilInputEnds();
    tell("at the end active", manager->isActive());
    tell("at the end permitted", *manager->hasPermission());
    return 0;
}

const TapEvent& hear(const TapEvent& event) {
    std::cout << (event.keyboardAutorepeat == 0 ? "key" : "repeat") << std::endl;
    return event;
}

int probeTap(EventTapService& taps) {
    const auto tap =
        taps.createTap(TapLocation::Session, TapPlacement::HeadInsert, TapOptions::ListenOnly,
                       tapEventMask(TapEventType::KeyDown), &hear);
    tell("tap", tap != nullptr);
    if (!tap)
        return 1;
    const auto source = tap->createRunLoopSource(0);
    source->addToRunLoop();
    tap->enable(true);
    runUntilInputEnds();
    return 0;
}

int probe(int argumentCount, char** arguments) {
    const QCoreApplication application(argumentCount, arguments);
    LinuxPlatform machine;
    const std::string_view what = argumentCount == 2 ? arguments[1] : "";
    if (what == "effect")
        return probeEffect(machine.platform());
    if (what == "tap")
        return probeTap(machine.platform().eventTaps);
    std::cerr << "usage: keyboard_probe effect|tap" << std::endl;
    return 2;
}

} // namespace

} // namespace quorvane

int main(int argumentCount, char** arguments) {
    return quorvane::probe(argumentCount, arguments);
}
