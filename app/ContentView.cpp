#include "app/ContentView.h"

#include <algorithm>

namespace quorvane {

namespace {

constexpr int emojiCount = 12;

// Seconds.
constexpr double velocityFeedInterval = 1.0 / 60;
constexpr double floatingEmojiInterval = 0.05;
constexpr double hardwareCheckPause = 1.5;

// For screen changes by a button.
constexpr Animation screenSpring = Animation::spring(0.4, 0.825);

} // namespace

ContentView::ContentView(const Platform& platform, StartupExperience& startupManager,
                         const std::vector<Effect>& effects)
    : m_platform(platform), m_sensor(LidAngleSensor::create(platform)),
      m_audioManager(AudioManager::create(platform)), m_effects(makeEffects(effects)),
      m_hardwareChecked(platform.userDefaults.boolForKey(hardwareCheckedKey)),
      m_floatingEmojis(FloatingEmoji::generate(emojiCount, platform.random)),
      m_startupManager(startupManager), m_self(std::make_shared<ContentView*>(this)) {
    makeToggleRows();
    m_keyObstacleFollowed = platform.accessibility.observeObstacle([this] { showKeyObstacle(); });
    updateScreen({});
    m_autoStartToken =
        m_platform.defaultCenter.addObserver(autoStartSimulation, [this] { autoStart(); });
}

ContentView::~ContentView() {
    m_platform.defaultCenter.removeObserver(m_autoStartToken);
    endVelocityFeed();
}

std::deque<ContentView::SwitchedEffect>
ContentView::makeEffects(const std::vector<Effect>& effects) {
    std::deque<SwitchedEffect> made;
    for (const Effect& effect : effects) {
        SwitchedEffect& switched = made.emplace_back();
        switched.text = effect.text;
        switched.manager = effect.make();
    }
    return made;
}

void ContentView::makeToggleRows() {
    m_toggleRows.push_back({.text = ToggleRowTexts::buildQuality,
                            .isOn = &m_audioEnabled,
                            .setOn = [this](bool on) { setHingeCreak(on); }});
    for (SwitchedEffect& effect : m_effects)
        addEffectRow(effect);
    Observable<bool>& startupEnabled = m_startupManager.startupSoundEnabled();
    m_toggleRows.push_back({.text = ToggleRowTexts::startup,
                            .isOn = &startupEnabled,
                            .setOn = [&startupEnabled](bool on) { startupEnabled = on; }});
}

void ContentView::addEffectRow(SwitchedEffect& effect) {
    const Observable<bool>& isActive = effect.manager->isActive();
    ToggleRow& row = m_toggleRows.emplace_back();
    row.text = effect.text;
    row.isOn = &isActive;
    row.setOn = [&effect](bool on) { switchEffect(effect, on); };
    row.hint = &effect.hint;
    // Permission may come while the hint is still shown.
    effect.activeFollowed = isActive.observe([&effect] { effect.hint = std::string(); });
}

void ContentView::switchEffect(SwitchedEffect& effect, bool on) {
    EffectManager& manager = *effect.manager;
    on ? manager.start() : manager.stop();
    effect.hint = on ? manager.obstacle() : std::string();
}

void ContentView::showKeyObstacle() {
    for (SwitchedEffect& effect : m_effects)
        if (effect.manager->hasPermission())
            effect.hint = effect.manager->obstacle();
}

void ContentView::updateScreen(const Animation& animation) {
    m_screenAnimation = animation;
    if (!m_hardwareChecked)
        m_screen = Screen::HardwareCheck;
    else
        m_screen = m_sufferingMode ? Screen::ControlPanel : Screen::Warning;
}

void ContentView::onAppear() {
    m_audioManager->loadSound("creaking", "mp3");
    startAnimations();
    startFloatingAnimation();
    if (m_hardwareChecked)
        m_sensor->probeSensor();
}

void ContentView::onDisappear() {
    stopAudio();
    m_sensor->stop();
    updateScreen({});
}

void ContentView::startAnimations() {
    m_textScale = {.value = 1.0, .animation = Animation::spring(0.6, 0.6)};
    m_emojiRotation = {.value = 360,
                       .animation = Animation::linear(20).repeatForever(/*reversing=*/false)};
    m_glowAmount = {.value = 1.0,
                    .animation = Animation::easeInOut(1.5).repeatForever(/*reversing=*/true)};
}

void ContentView::startFloatingAnimation() {
    // Never invalidated: the particles move for the life of the process, on every screen.
    m_platform.runLoop.scheduledTimer(floatingEmojiInterval, true,
                                      [self = std::weak_ptr(m_self)](Timer&) {
                                          if (const auto view = self.lock())
                                              (*view)->moveFloatingEmojis();
                                      });
}

void ContentView::moveFloatingEmojis() {
    for (FloatingEmoji& emoji : m_floatingEmojis)
        emoji.step(m_platform.random);
    m_floatingEmojisMoved.notify();
}

void ContentView::runHardwareCheck() {
    m_isChecking = true;
    m_platform.runLoop.asyncAfter(hardwareCheckPause, [self = std::weak_ptr(m_self)] {
        if (const auto view = self.lock())
            (*view)->finishHardwareCheck();
    });
}

void ContentView::finishHardwareCheck() {
    m_sensor->probeSensor();
    m_hasLidSensor = m_sensor->sensorFound() && !m_sensor->usingSleepWake();
    const bool trusted = m_platform.accessibility.isProcessTrusted();
    for (const SwitchedEffect& effect : m_effects)
        if (Observable<bool>* hasPermission = effect.manager->hasPermission())
            *hasPermission = trusted;
    m_hasAccessibility = trusted;
    m_hasTrackpad = isRunningOnMacBook();
    m_checkDone = true;
    m_isChecking = false;
}

void ContentView::confirmHardwareCheck() {
    m_hardwareChecked = true;
    m_platform.userDefaults.setBool(hardwareCheckedKey, true);
    updateScreen(screenSpring);
}

void ContentView::enterSufferingMode() {
    m_sufferingMode = true;
    m_sensor->start();
    updateScreen(screenSpring);
}

void ContentView::autoStart() {
    if (m_sufferingMode)
        return;
    m_sufferingMode = true;
    m_sensor->start();
    updateScreen({});
}

void ContentView::leaveSufferingMode() {
    stopAudio();
    updateScreen(screenSpring);
}

void ContentView::stopAudio() {
    m_sufferingMode = false;
    m_audioEnabled = false;
    endVelocityFeed();
    m_audioManager->stop();
    for (SwitchedEffect& effect : m_effects) {
        effect.manager->stop();
        effect.hint = std::string();
    }
    m_startupManager.startupSoundEnabled() = false;
}

void ContentView::setHingeCreak(bool on) {
    m_audioEnabled = on;
    if (on) {
        startVelocityFeed();
        return;
    }
    endVelocityFeed();
    m_audioManager->stop();
}

void ContentView::startVelocityFeed() {
    // An earlier timer's handle is overwritten; that timer keeps firing beside the new one.
    m_linkTimer = m_platform.runLoop.scheduledTimer(
        velocityFeedInterval, true, [self = std::weak_ptr(m_self)](Timer&) {
            if (const auto view = self.lock())
                (*view)->m_audioManager->update((*view)->m_sensor->velocity());
        });
}

void ContentView::endVelocityFeed() {
    invalidate(m_linkTimer);
}

void ContentView::presentInfo(const ToggleRowText& row) {
    m_activeInfoLabel = std::string(row.infoTitle);
    m_activeInfoText = std::string(row.info);
    m_showInfo = true;
}

void ContentView::dismissInfo() {
    m_showInfo = false;
}

std::array<CheckRow, 6> ContentView::checkRows() const {
    return makeCheckRows(m_hasLidSensor, m_hasAccessibility, m_hasTrackpad);
}

bool ContentView::isRunningOnMacBook() const {
    std::string model = m_platform.system.modelName();
    // ASCII only: in a Turkish locale, tolower('I') is not 'i'.
    std::transform(model.begin(), model.end(), model.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
    return model.find("macbook") != std::string::npos;
}

} // namespace quorvane
