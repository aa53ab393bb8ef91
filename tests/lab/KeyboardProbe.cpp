// Listens to the keyboards of this machine; the user who runs it may lack permission to read them.
//
//     keyboard_probe effect    starts the keyboard effect, prints its permission checks and states
//     keyboard_probe tap       opens a tap, prints a line for each key that goes down
//
// Ends when standard input does.

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

void print(std::string_view what, bool result) {
    std::cout << what << (result ? " yes" : " no") << std::endl;
}

/// The platform's Accessibility; prints each result.
class PrintingAccessibility final : public Accessibility {
public:
    explicit PrintingAccessibility(Accessibility& real) : m_real(real) {}

    [[nodiscard]] bool isProcessTrusted() const override {
        const bool result = m_real.isProcessTrusted();
        print("trusted", result);
        return result;
    }

    bool isProcessTrustedWithOptions(bool prompt) override {
        const bool result = m_real.isProcessTrustedWithOptions(prompt);
        print(prompt ? "trusted, with a prompt" : "trusted, without a prompt", result);
        return result;
    }

    void withdrawPrompt() override { m_real.withdrawPrompt(); }

    [[nodiscard]] std::string obstacle() const override { return m_real.obstacle(); }

    [[nodiscard]] Subscription observeObstacle(std::function<void()> observer) override {
        return m_real.observeObstacle(std::move(observer));
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
    PrintingAccessibility accessibility(platform.accessibility);
    const auto manager =
        KeyboardCrackManager::create(exchange(platform, {.accessibility = &accessibility}));
    const auto observation =
        manager->isActive().observe([&] { print("active", manager->isActive()); });
    manager->start();
    std::cout << "started" << std::endl;
    runUntilInputEnds();
    print("at the end active", manager->isActive());
    print("at the end permitted", *manager->hasPermission());
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
    print("tap", tap != nullptr);
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
