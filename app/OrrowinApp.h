#pragma once

#include <memory>
#include <string_view>

#include "app/ContentView.h"
#include "effects/startup/StartupSoundManager.h"
#include "platform/Platform.h"

namespace quorvane {

/// The program: what lives as long as the process, and the window's title and size.
class OrrowinApp {
public:
    static constexpr std::string_view windowTitle = "Quorvane";
    /// The window's fixed size in points.
    static constexpr int windowWidth = 550;
    static constexpr int windowHeight = 780;

    explicit OrrowinApp(const Platform& platform);

    /// Makes the window's content, which must not outlive this.
    [[nodiscard]] std::unique_ptr<ContentView> makeContentView();

private:
    Platform m_platform;
    std::shared_ptr<StartupSoundManager> m_startupManager;
};

} // namespace quorvane
