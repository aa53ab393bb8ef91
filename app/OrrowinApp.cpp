#include "app/OrrowinApp.h"

#include <vector>

#include "effects/crash/BSODManager.h"
#include "effects/crash/FreezeManager.h"
#include "effects/fan/FanManager.h"
#include "effects/keyboard/KeyboardCrackManager.h"

namespace quorvane {

namespace {

template <class Manager>
Effect effect(const ToggleRowText& text, const Platform& platform) {
    return {.text = text, .make = [platform] { return Manager::create(platform); }};
}

} // namespace

OrrowinApp::OrrowinApp(const Platform& platform)
    : m_platform(platform), m_startupManager(StartupSoundManager::create(platform)) {}

std::unique_ptr<ContentView> OrrowinApp::makeContentView() {
    const std::vector<Effect> effects{
        effect<KeyboardCrackManager>(ToggleRowTexts::keyboard, m_platform),
        effect<FanManager>(ToggleRowTexts::thermals, m_platform),
        effect<BSODManager>(ToggleRowTexts::stability, m_platform),
        effect<FreezeManager>(ToggleRowTexts::performance, m_platform),
    };
    return std::make_unique<ContentView>(m_platform, *m_startupManager, effects);
}

} // namespace quorvane
