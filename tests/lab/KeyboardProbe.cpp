// Starts the keyboard effect and prints its permission checks and states; the user who runs it may
// lack permission to read keyboards. Ends when standard input does.

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

int probe(const Platform& platform) {
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

} // namespace

} // namespace quorvane

int main(int argumentCount, char** arguments) {
    const QCoreApplication application(argumentCount, arguments);
    quorvane::LinuxPlatform machine;
    return quorvane::probe(machine.platform());
}
