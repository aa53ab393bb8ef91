#pragma once

#include <array>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "app/CheckRow.h"
#include "app/FloatingEmoji.h"
#include "app/ToggleRow.h"
#include "base/Animation.h"
#include "base/EffectManager.h"
#include "base/NonCopyable.h"
#include "base/Observable.h"
#include "effects/creak/AudioManager.h"
#include "platform/Platform.h"
#include "sensing/LidAngleSensor.h"

namespace quorvane {

/// An effect of the control panel: the texts of its row, and what makes its manager.
struct Effect {
    ToggleRowText text;
    /// Never gives null.
    std::function<std::shared_ptr<EffectManager>()> make;
};

/// The controller: owns the sensor, the creak and the effects, decides which screen is shown,
/// stores the one persistent flag, feeds the lid's velocity to the creak, and starts and stops
/// everything in a fixed order. Independent of the user interface, which reads its observables and
/// calls its operations. Main thread only.
class ContentView : NonCopyable {
public:
    enum class Screen { HardwareCheck, Warning, ControlPanel };

    /// The persistent flag's key in the user defaults.
    static constexpr std::string_view hardwareCheckedKey = "hardwareChecked";
    /// The notification on the default centre that enters the control panel.
    static constexpr std::string_view autoStartSimulation = "autoStartSimulation";

    /// `effects` are made, shown and stopped in their order. `startupManager` outlives the view.
    ContentView(const Platform& platform, StartupExperience& startupManager,
                const std::vector<Effect>& effects);
    ~ContentView();

    // State for the screens.

    /// Follows hardwareChecked and sufferingMode.
    [[nodiscard]] const Observable<Screen>& screen() const { return m_screen; }

    /// The animation of the latest change of `screen`.
    [[nodiscard]] const Animation& screenAnimation() const { return m_screenAnimation; }

    [[nodiscard]] const Observable<bool>& hardwareChecked() const { return m_hardwareChecked; }

    [[nodiscard]] const Observable<bool>& sufferingMode() const { return m_sufferingMode; }

    [[nodiscard]] const Observable<bool>& audioEnabled() const { return m_audioEnabled; }

    [[nodiscard]] const Observable<bool>& isChecking() const { return m_isChecking; }

    [[nodiscard]] const Observable<bool>& checkDone() const { return m_checkDone; }

    [[nodiscard]] const Observable<bool>& hasLidSensor() const { return m_hasLidSensor; }

    [[nodiscard]] const Observable<bool>& hasAccessibility() const { return m_hasAccessibility; }

    [[nodiscard]] const Observable<bool>& hasTrackpad() const { return m_hasTrackpad; }

    [[nodiscard]] const Observable<std::string>& activeInfoLabel() const {
        return m_activeInfoLabel;
    }

    [[nodiscard]] const Observable<std::string>& activeInfoText() const { return m_activeInfoText; }

    [[nodiscard]] const Observable<bool>& showInfo() const { return m_showInfo; }

    /// Scale of the warning sign.
    [[nodiscard]] const Observable<AnimatedValue>& textScale() const { return m_textScale; }

    /// Degrees; nothing shows it.
    [[nodiscard]] const Observable<AnimatedValue>& emojiRotation() const { return m_emojiRotation; }

    /// 0 to 1; glow radii are multiples of it.
    [[nodiscard]] const Observable<AnimatedValue>& glowAmount() const { return m_glowAmount; }

    /// Moved 20 times a second from the first appearance on.
    [[nodiscard]] const std::vector<FloatingEmoji>& floatingEmojis() const {
        return m_floatingEmojis;
    }

    [[nodiscard]] const AnyObservable& floatingEmojisMoved() const { return m_floatingEmojisMoved; }

    /// The current results of the hardware check, in display order.
    [[nodiscard]] std::array<CheckRow, 6> checkRows() const;

    /// In display order: the creak's, the effects', the startup experience's. Fixed for the life of
    /// the view.
    [[nodiscard]] const std::vector<ToggleRow>& toggleRows() const { return m_toggleRows; }

    // Lifecycle.

    /// The view has appeared on screen. A second call adds a second floating-emoji timer.
    void onAppear();
    /// The view has disappeared for good: stops everything, the sensor too.
    void onDisappear();

    // Controls.

    /// "CHECK HARDWARE 🔍": the results follow after a fixed pause of 1.5 s.
    void runHardwareCheck();
    /// "CONTINUE": stores that the check is done, whatever the results.
    void confirmHardwareCheck();
    /// "MAKE ME SUFFER 😭".
    void enterSufferingMode();
    /// "STOP, I'M SUFFERING 😭".
    void leaveSufferingMode();
    /// The first row's switch. If set to true twice, the first velocity timer keeps firing.
    void setHingeCreak(bool on);
    /// An info button.
    void presentInfo(const ToggleRowText& row);
    /// The popup's "OK". Its texts stay until the next info button.
    void dismissInfo();

    /// Whether the model name contains "macbook", in any letter case.
    [[nodiscard]] bool isRunningOnMacBook() const;

    [[nodiscard]] LidAngleSensor& sensor() { return *m_sensor; }

    [[nodiscard]] AudioManager& audioManager() { return *m_audioManager; }

private:
    struct SwitchedEffect {
        ToggleRowText text;
        std::shared_ptr<EffectManager> manager;
        Observable<std::string> hint;
        Subscription activeFollowed;
    };

    [[nodiscard]] static std::deque<SwitchedEffect> makeEffects(const std::vector<Effect>& effects);
    void makeToggleRows();
    void addEffectRow(SwitchedEffect& effect);
    static void switchEffect(SwitchedEffect& effect, bool on);
    void showKeyObstacle();
    void finishHardwareCheck();
    void startAnimations();
    void startFloatingAnimation();
    void moveFloatingEmojis();
    void startVelocityFeed();
    void endVelocityFeed();
    void autoStart();
    /// Leaves suffering mode and stops everything but the sensor.
    void stopAudio();
    /// Comes last in each operation: making a screen takes time, and an effect that is to stop must
    /// not be heard or seen meanwhile.
    void updateScreen(const Animation& animation);

    Platform m_platform;

    // In the order of creation.
    std::shared_ptr<LidAngleSensor> m_sensor;
    std::shared_ptr<AudioManager> m_audioManager;
    // A deque, because the rows point to the hints.
    std::deque<SwitchedEffect> m_effects;
    Observable<bool> m_audioEnabled;
    Observable<bool> m_sufferingMode;
    Observable<bool> m_hardwareChecked;
    Observable<bool> m_isChecking;
    Observable<bool> m_checkDone;
    Observable<bool> m_hasLidSensor;
    Observable<bool> m_hasAccessibility;
    Observable<bool> m_hasTrackpad;
    std::shared_ptr<Timer> m_linkTimer;
    Observable<std::string> m_activeInfoLabel;
    Observable<std::string> m_activeInfoText;
    Observable<bool> m_showInfo;
    Observable<AnimatedValue> m_textScale{{.value = 0.5, .animation = {}}};
    Observable<AnimatedValue> m_emojiRotation;
    Observable<AnimatedValue> m_glowAmount;
    std::vector<FloatingEmoji> m_floatingEmojis;
    ChangeNotice m_floatingEmojisMoved;
    StartupExperience& m_startupManager;

    Observable<Screen> m_screen;
    Animation m_screenAnimation;
    std::vector<ToggleRow> m_toggleRows;
    Subscription m_keyObstacleFollowed;
    NotificationCenter::Token m_autoStartToken = 0;
    // Delayed blocks hold it weakly, so that they do nothing after the view's destruction.
    std::shared_ptr<ContentView*> m_self;
};

} // namespace quorvane
