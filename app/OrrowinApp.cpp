#include "app/OrrowinApp.h"

namespace quorvane {

OrrowinApp::OrrowinApp(const Platform& platform) : m_platform(platform) {}

std::unique_ptr<ContentView> OrrowinApp::makeContentView() {
    return std::make_unique<ContentView>(m_platform, m_startupManager.get(), EffectFactories{});
}

} // namespace quorvane
