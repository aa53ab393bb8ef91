#include "app/LoopingValue.h"

#include <utility>

namespace quorvane {

namespace {

constexpr double interval = 1.0 / 30;

} // namespace

LoopingValue::LoopingValue(const Observable<AnimatedValue>& source, RunLoop& runLoop,
                           std::function<void()> changed)
    : m_source(source), m_runLoop(runLoop), m_changed(std::move(changed)),
      m_value(source.get().value), m_from(m_value), m_begun(runLoop.currentMediaTime()),
      m_followed(source.observe([this] { begin(); })) {}

LoopingValue::~LoopingValue() {
    invalidate(m_timer);
}

void LoopingValue::begin() {
    m_from = m_value;
    m_begun = m_runLoop.currentMediaTime();
    updateTimer();
    update();
}

void LoopingValue::setSeen(bool seen) {
    m_seen = seen;
    updateTimer();
}

void LoopingValue::setAtRest(bool atRest) {
    m_atRest = atRest;
    updateTimer();
    update();
}

void LoopingValue::update() {
    const auto& [target, animation] = m_source.get();
    const double progress =
        m_atRest ? 1 : animation.progress(m_runLoop.currentMediaTime() - m_begun);
    if (std::exchange(m_value, m_from + (target - m_from) * progress) != m_value)
        m_changed();
}

void LoopingValue::updateTimer() {
    const bool moves = m_source.get().animation.repeatsForever;
    const bool needed = moves && m_seen && !m_atRest;
    if (needed == (m_timer != nullptr))
        return;
    if (needed)
        m_timer = m_runLoop.scheduledTimer(interval, true, [this](Timer&) { update(); });
    else
        invalidate(m_timer);
}

} // namespace quorvane
