#include "app/OrrowinApp.h"

#include "effects/crash/BSODManager.h"
#include "effects/crash/FreezeManager.h"
#include "effects/fan/FanManager.h"
#include "effects/keyboard/KeyboardCrackManager.h"

namespace quorvane {

OrrowinApp::OrrowinApp(const Platform& platform)
    : m_platform(platform), m_startupManager(StartupSoundManager::create(platform)) {}

std::unique_ptr<ContentView> OrrowinApp::makeContentView() {
    const EffectFactories effects{
        .keyboard = [this] { return KeyboardCrackManager::create(m_platform); },
        .fan = [this] { return FanManager::create(m_platform); },
        .bsod = [this] { return BSODManager::create(m_platform); },
        .freeze = [this] { return FreezeManager::create(m_platform); },
    };
    return std::make_unique<ContentView>(m_platform, m_startupManager.get(), effects);
}

} // namespace quorvane
