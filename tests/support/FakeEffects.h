#pragma once

#include <string>
#include <utility>
#include <vector>

#include "base/EffectManager.h"

namespace quorvane {

/// An effect that does what its switch says and tells what it was told. It can stand for any of
/// them, the keyboard's too.
class FakeEffect final : public KeyboardEffect {
public:
    FakeEffect() = default;

    /// Adds "name start" and "name stop" to `calls`, which outlives it.
    FakeEffect(std::string name, std::vector<std::string>& calls)
        : m_name(std::move(name)), m_calls(&calls) {}

    [[nodiscard]] const Observable<bool>& isActive() const override { return m_isActive; }

    [[nodiscard]] Observable<bool>& hasPermission() override { return m_hasPermission; }

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

    bool canStart = true;
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
    Observable<bool> m_hasPermission;
};

/// A startup experience that is only its switch.
class FakeStartup final : public StartupExperience {
public:
    [[nodiscard]] Observable<bool>& startupSoundEnabled() override { return m_enabled; }

private:
    Observable<bool> m_enabled{true};
};

} // namespace quorvane
