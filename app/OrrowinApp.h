#pragma once

#include <memory>
#include <string_view>

#include "app/ContentView.h"
#include "effects/startup/StartupSoundManager.h"
#include "platform/Platform.h"

namespace quorvane {

/// The program itself: what lives as long as the process, and the one window's terms.
class OrrowinApp {
public:
    static constexpr std::string_view windowTitle = "Quorvane";
    /// The window's fixed size in points.
    static constexpr int windowWidth = 550;
    static constexpr int windowHeight = 780;

    explicit OrrowinApp(const Platform& platform);

    /// Makes the window's content, which borrows the startup manager.
    [[nodiscard]] std::unique_ptr<ContentView> makeContentView();

private:
    Platform m_platform;
    // Its triggers are live from launch, on every screen.
    std::shared_ptr<StartupSoundManager> m_startupManager;
};

} // namespace quorvane
