#pragma once

#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "effects/crash/BSODView.h"
#include "effects/crash/FreezeView.h"
#include "effects/crash/OverlayRecipe.h"
#include "platform/linux/overlays/LinuxScreens.h"
#include "tests/support/Environment.h"
#include "tests/support/TestDesktop.h"
#include "tests/support/Waiting.h"

namespace quorvane {

inline constexpr QRgb blue = qRgb(0, 120, 212);
inline constexpr QRgb red = qRgb(200, 0, 0);
inline constexpr QRgb green = qRgb(0, 200, 0);
inline constexpr QRgb white = qRgb(255, 255, 255);
// A quarter of white over the blue.
inline constexpr QRgb faint = qRgb(64, 154, 223);
inline constexpr QPoint farFromText(1000, 700);

inline bool isNear(QRgb one, QRgb other, int tolerance = 3) {
    return std::abs(qRed(one) - qRed(other)) <= tolerance &&
           std::abs(qGreen(one) - qGreen(other)) <= tolerance &&
           std::abs(qBlue(one) - qBlue(other)) <= tolerance;
}

inline QRgb veiled(QRgb color) {
    const auto veil = [](int value) { return qRound(value * 0.45 + 255 * 0.55); };
    return qRgb(veil(qRed(color)), veil(qGreen(color)), veil(qBlue(color)));
}

/// The rectangle around everything in a part of a picture that is not of the background's colour.
inline QRect drawnIn(const QImage& picture, const QRect& part, QRgb background = blue,
                     int tolerance = 3) {
    QRect drawn;
    for (int y = part.top(); y <= part.bottom(); ++y)
        for (int x = part.left(); x <= part.right(); ++x)
            if (!isNear(picture.pixel(x, y), background, tolerance))
                drawn |= QRect(x, y, 1, 1);
    return drawn;
}

/// The rectangles around the lines of text in a part of a picture: between two lines are rows of
/// pixels where nothing is drawn.
inline std::vector<QRect> linesIn(const QImage& picture, const QRect& part) {
    std::vector<QRect> lines;
    bool inLine = false;
    for (int y = part.top(); y <= part.bottom(); ++y) {
        const QRect row = drawnIn(picture, {part.left(), y, part.width(), 1});
        if (row.isEmpty()) {
            inLine = false;
            continue;
        }
        if (!inLine)
            lines.emplace_back();
        inLine = true;
        lines.back() |= row;
    }
    return lines;
}

/// The pixel in a part of a picture whose red differs most from the background's: one that a letter
/// or line covers completely.
inline QRgb strongestIn(const QImage& picture, const QRect& part, QRgb background = blue) {
    QRgb strongest = background;
    const auto strength = [&](QRgb color) { return std::abs(qRed(color) - qRed(background)); };
    for (int y = part.top(); y <= part.bottom(); ++y)
        for (int x = part.left(); x <= part.right(); ++x)
            if (strength(picture.pixel(x, y)) > strength(strongest))
                strongest = picture.pixel(x, y);
    return strongest;
}

/// The middle of a stop screen's ring, in pixels.
inline QPointF ringCenterIn(const QImage& picture, double scale = 1, int tolerance = 3) {
    // It is the leftmost thing below the texts; its widest row is its middle.
    const QRect leftEdge = drawnIn(
        picture, QRectF(97 * scale, 395 * scale, 5 * scale, 200 * scale).toRect(), blue, tolerance);
    return {135 * scale, leftEdge.top() + leftEdge.height() / 2.0};
}

/// The ring of a stop screen, clockwise from its top, a character for each fortieth: "#" white,
/// "." faint, "?" any other colour.
inline std::string ringIn(const QImage& picture, double scale = 1, int tolerance = 3) {
    const QPointF center = ringCenterIn(picture, scale, tolerance);
    std::string ring;
    for (int i = 0; i < 40; ++i) {
        const double angle = 2 * M_PI * (i + 0.5) / 40;
        const QRgb pixel =
            picture.pixel(static_cast<int>(center.x() + 35 * scale * std::sin(angle)),
                          static_cast<int>(center.y() - 35 * scale * std::cos(angle)));
        ring += isNear(pixel, white, tolerance) ? '#' : isNear(pixel, faint, tolerance) ? '.' : '?';
    }
    return ring;
}

/// Panels of LinuxScreens on a virtual desktop.
class LinuxScreensTest : public testing::Test {
protected:
    explicit LinuxScreensTest(const std::vector<std::string>& serverOptions = {},
                              const std::vector<std::string>& managerOptions = {})
        : m_desktop(serverOptions, managerOptions) {
        m_stop->errorMessage = "SYSTEM_THREAD_EXCEPTION_NOT_HANDLED";
        m_stop->errorCode = "0xC000021A";
    }

    std::shared_ptr<OverlayPanel> showStopScreen() {
        return show({.opaque = true, .background = BSODView::background, .ignoresMouseEvents = {}},
                    std::make_shared<BSODView>(m_stop));
    }

    std::shared_ptr<OverlayPanel> showFreeze() {
        return show({.opaque = false,
                     .background = {.red = 0, .green = 0, .blue = 0, .alpha = 0},
                     .ignoresMouseEvents = false},
                    std::make_shared<FreezeView>());
    }

    std::shared_ptr<OverlayPanel> show(const OverlayAppearance& appearance,
                                       const std::shared_ptr<const OverlayView>& view) {
        const auto screen = m_screens.mainScreen();
        EXPECT_TRUE(screen);
        auto panel = showOverlay(m_screens, *screen, appearance, view);
        waitFor(50ms);
        return panel;
    }

    bool comesToShow(QPoint place, QRgb color) {
        return waitUntil([&] { return isNear(m_desktop.look(place), color); });
    }

    /// xrandr's exit status, which is not 0 when no monitor is left.
    static int xrandr(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "xrandr");
        return ChildProcess::run(arguments);
    }

    bool comesToCover(const QRect& place) { return comesToStack({place}); }

    /// Waits until the panels are in these places, the foremost last.
    bool comesToStack(const std::vector<QRect>& places) {
        return waitUntil([&] { return m_desktop.panels() == places; });
    }

    static void useSmallMode() {
        ASSERT_EQ(xrandr({"--newmode", "small", "50", "1024", "1048", "1152", "1296", "600", "603",
                          "613", "624"}),
                  0);
        ASSERT_EQ(xrandr({"--addmode", "screen", "small"}), 0);
        ASSERT_EQ(xrandr({"--output", "screen", "--mode", "small"}), 0);
    }

    /// Two monitors beside each other; `primary` is one of their names.
    static void splitScreen(const std::string& primary = {}) {
        // xrandr's mark of the primary monitor.
        const auto name = [&primary](const std::string& each) {
            return (each == primary ? "*" : "") + each;
        };
        ASSERT_EQ(xrandr({"--setmonitor", name("left"), "640/170x800/210+0+0", "screen"}), 0);
        ASSERT_EQ(xrandr({"--setmonitor", name("right"), "640/170x800/210+640+0", "none"}), 0);
    }

    // No buses: those of the machine could say that the session is locked.
    EnvironmentVariable m_systemBus{"DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nowhere"};
    EnvironmentVariable m_sessionBus{"DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere"};
    TestDesktop m_desktop;
    std::shared_ptr<StopScreen> m_stop = std::make_shared<StopScreen>();
    LinuxScreens m_screens;
};

/// On an X server without RANDR and without shared memory.
class PlainServerTest : public LinuxScreensTest {
protected:
    PlainServerTest() : LinuxScreensTest({"-extension", "MIT-SHM", "-extension", "RANDR"}) {}
};

} // namespace quorvane
