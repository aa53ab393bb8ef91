#include "app/OrrowinApp.h"

#include "effects/crash/BSODManager.h"
#include "effects/crash/FreezeManager.h"

namespace quorvane {

OrrowinApp::OrrowinApp(const Platform& platform) : m_platform(platform) {}

std::unique_ptr<ContentView> OrrowinApp::makeContentView() {
    const EffectFactories effects{
        .keyboard = {},
        .fan = {},
        .bsod = [this] { return BSODManager::create(m_platform); },
        .freeze = [this] { return FreezeManager::create(m_platform); },
    };
    return std::make_unique<ContentView>(m_platform, m_startupManager.get(), effects);
}

} // namespace quorvane
