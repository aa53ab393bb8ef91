// Constructs the startup manager once, as the program does at its start, and prints the
// milliseconds that this took and how many of them were for opening the clip. Once per process, as
// the first sound that a process loads takes longest.

#include <QCoreApplication>

#include <cstdio>
#include <string_view>

#include "effects/startup/StartupSoundManager.h"
#include "platform/linux/LinuxPlatform.h"
#include "tests/support/ExchangedPlatform.h"

namespace {

using namespace quorvane;

/// Records when the startup manager prints, without printing.
class LineClock final : public Console {
public:
    explicit LineClock(RunLoop& runLoop) : m_runLoop(runLoop) {}

    void print(std::string_view line) override {
        if (line.find("[STARTUP]") != std::string_view::npos)
            m_loaded = m_runLoop.currentMediaTime();
    }

    [[nodiscard]] double loaded() const { return m_loaded; }

private:
    RunLoop& m_runLoop;
    double m_loaded = 0;
};

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    LinuxPlatform linuxPlatform;
    const Platform machine = linuxPlatform.platform();
    LineClock console(machine.runLoop);
    const Platform platform = exchange(machine, {.console = &console});
    const double begun = machine.runLoop.currentMediaTime();
    const auto manager = StartupSoundManager::create(platform);
    const double done = machine.runLoop.currentMediaTime();
    std::printf("%.3f %.3f\n", (done - begun) * 1000, (console.loaded() - begun) * 1000);
}
