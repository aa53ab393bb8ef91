#pragma once

#include <memory>
#include <string_view>

#include "app/ContentView.h"
#include "base/EffectManager.h"
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
    // None until the startup experience is part of the program.
    std::unique_ptr<StartupExperience> m_startupManager;
};

} // namespace quorvane
