#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "app/ContentView.h"
#include "base/EffectManager.h"

namespace quorvane {

/// An effect that is active from `start` to `stop` and records both.
class FakeEffect final : public EffectManager {
public:
    FakeEffect() = default;

    /// Adds "name start" and "name stop" to `calls`, which outlives it.
    FakeEffect(std::string name, std::vector<std::string>& calls)
        : m_name(std::move(name)), m_calls(&calls) {}

    [[nodiscard]] const Observable<bool>& isActive() const override { return m_isActive; }

    [[nodiscard]] Observable<bool>* hasPermission() override {
        return needsPermission ? &permission : nullptr;
    }

    [[nodiscard]] std::string obstacle() override { return whatKeepsItFromBeingNoticed; }

    void start() override {
        ++starts;
        note(" start");
        if (canStart)
            m_isActive = true;
    }

    void stop() override {
        ++stops;
        note(" stop");
        m_isActive = false;
    }

    bool needsPermission = false;
    Observable<bool> permission;
    bool canStart = true;
    std::string whatKeepsItFromBeingNoticed;
    int starts = 0;
    int stops = 0;

private:
    void note(const char* what) {
        if (m_calls)
            m_calls->push_back(m_name + what);
    }

    std::string m_name;
    std::vector<std::string>* m_calls = nullptr;
    Observable<bool> m_isActive;
};

/// The effects of a test's controller; an empty function leaves its effect out.
struct FakeEffects {
    using Make = std::function<std::shared_ptr<EffectManager>()>;

    Make keyboard;
    Make fan;
    Make bsod;
    Make freeze;

    /// In display order.
    [[nodiscard]] std::vector<Effect> list() const {
        std::vector<Effect> effects{{.text = ToggleRowTexts::keyboard, .make = keyboard},
                                    {.text = ToggleRowTexts::thermals, .make = fan},
                                    {.text = ToggleRowTexts::stability, .make = bsod},
                                    {.text = ToggleRowTexts::performance, .make = freeze}};
        std::erase_if(effects, [](const Effect& effect) { return !effect.make; });
        return effects;
    }
};

/// A startup experience that consists of its switch only.
class FakeStartup final : public StartupExperience {
public:
    [[nodiscard]] Observable<bool>& startupSoundEnabled() override { return m_enabled; }

private:
    Observable<bool> m_enabled{true};
};

} // namespace quorvane
