#include "platform/simulated/LiveMachine.h"

#include <utility>

namespace quorvane {

LiveMachine::LiveMachine(const Scenario& scenario, const Platform& real)
    : m_real(real), m_hid(real.runLoop), m_application(real.application),
      m_player(scenario, real.runLoop, m_workspace, real.defaultCenter) {
    m_player.setUpMachine(m_hid, m_accessibility, m_system);
    if (scenario.loginItem)
        m_application.status = LoginItemStatus::Enabled;
    if (!scenario.defaults)
        return;
    m_userDefaults.emplace();
    for (const auto& [key, value] : *scenario.defaults)
        m_userDefaults->setBool(key, value);
}

Platform LiveMachine::platform() {
    return {.runLoop = m_real.runLoop,
            .hid = m_hid,
            .workspace = m_workspace,
            .defaultCenter = m_real.defaultCenter,
            .audio = m_real.audio,
            .eventTaps = m_eventTaps,
            .accessibility = m_accessibility,
            .haptics = m_real.haptics,
            .screens = m_real.screens,
            .application = m_application,
            .userDefaults = m_userDefaults ? *m_userDefaults : m_real.userDefaults,
            .bundle = m_real.bundle,
            .system = m_system,
            .random = m_real.random,
            .console = m_real.console};
}

void LiveMachine::start(ScenarioHandlers handlers) {
    handlers.key = [this](const TapEvent& event) { m_eventTaps.send(event); };
    m_player.start(std::move(handlers));
}

} // namespace quorvane
