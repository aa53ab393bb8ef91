// Shows one overlay, for tests and measurements that need it in a program of its own.

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QTimer>
#include <cstdlib>
#include <ctime>
#include <iostream>
#include <memory>
#include <string>

#include "effects/crash/BSODView.h"
#include "effects/crash/FreezeView.h"
#include "effects/crash/OverlayRecipe.h"
#include "platform/linux/overlays/LinuxScreens.h"

namespace quorvane {

namespace {

double processorSeconds() {
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

std::shared_ptr<OverlayPanel> show(ScreenService& screens, const std::string& kind,
                                   const std::shared_ptr<StopScreen>& stop) {
    const auto screen = screens.mainScreen();
    if (!screen)
        return nullptr;
    const Rect frame = screen->frame();
    std::cout << "frame " << frame.x << ' ' << frame.y << ' ' << frame.width << ' ' << frame.height
              << std::endl;
    if (kind == "freeze")
        return showOverlay(screens, *screen,
                           {.opaque = false,
                            .background = {.red = 0, .green = 0, .blue = 0, .alpha = 0},
                            .ignoresMouseEvents = false},
                           std::make_shared<FreezeView>());
    return showOverlay(
        screens, *screen,
        {.opaque = true, .background = BSODView::background, .ignoresMouseEvents = {}},
        std::make_shared<BSODView>(stop));
}

// OVERLAY-KIND [PROGRESS | run]: "run" moves the progress from 0 to 1 in 5 s, 60 times a second,
// and prints the processor time that took.
int probe(int argumentCount, char** arguments) {
    const QGuiApplication application(argumentCount, arguments);
    const std::string kind = argumentCount > 1 ? arguments[1] : "stop";
    const std::string progress = argumentCount > 2 ? arguments[2] : "0.5";
    const auto stop = std::make_shared<StopScreen>();
    stop->errorMessage = "SYSTEM_THREAD_EXCEPTION_NOT_HANDLED";
    stop->errorCode = "0xC000021A";
    LinuxScreens screens;
    std::shared_ptr<OverlayPanel> panel;
    QTimer ticks;
    QElapsedTimer since;
    double before = 0;
    QTimer::singleShot(0, [&] {
        if (progress != "run")
            stop->progress = std::stod(progress);
        before = processorSeconds();
        since.start();
        panel = show(screens, kind, stop);
        std::cout << "up after " << static_cast<double>(since.nsecsElapsed()) / 1e6 << " ms"
                  << std::endl;
        if (progress != "run")
            return;
        ticks.setTimerType(Qt::PreciseTimer);
        ticks.start(16);
    });
    QObject::connect(&ticks, &QTimer::timeout, [&] {
        stop->progress = std::min(static_cast<double>(since.elapsed()) / 5000, 1.0);
        if (stop->progress < 1)
            return;
        panel->orderOut();
        std::cout << "processor time " << processorSeconds() - before << " s" << std::endl;
        QGuiApplication::quit();
    });
    return QGuiApplication::exec();
}

} // namespace

} // namespace quorvane

int main(int argumentCount, char** arguments) {
    return quorvane::probe(argumentCount, arguments);
}
