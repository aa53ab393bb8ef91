#include "app/screens/bridge/ContentViewModel.h"

#include <utility>

namespace quorvane {

ContentViewModel::ContentViewModel(ContentView& content, const Platform& platform,
                                   const Desktop& desktop, QObject* parent)
    : QObject(parent), m_content(content), m_bundle(platform.bundle), m_desktop(desktop),
      m_checkRows(content), m_toggleRows(content), m_info(content),
      m_glow(content.glowAmount(), platform.runLoop, [this] { emit glowChanged(); }),
      m_screenFollowed(follow(content.screen(), &ContentViewModel::screenChanged)),
      m_particlesFollowed(content.floatingEmojisMoved().observe([this] { moveParticles(); })),
      m_motionFollowed(desktop.reducesMotion().observe([this] { updateAnimates(); })) {
    connect(&m_info, &InfoPresenter::changed, this, &ContentViewModel::infoChanged);
    connect(this, &ContentViewModel::screenChanged, this, &ContentViewModel::updateAnimates);
    updateAnimates();
}

void ContentViewModel::setSeen(bool seen) {
    if (std::exchange(m_seen, seen) != seen)
        updateAnimates();
}

// The hardware check has neither glow nor particles.
void ContentViewModel::updateAnimates() {
    m_glow.setSeen(m_seen && m_content.screen() != ContentView::Screen::HardwareCheck);
    m_glow.setAtRest(m_desktop.reducesMotion());
    emit animatesChanged();
}

void ContentViewModel::moveParticles() {
    if (animates())
        emit particlesMoved();
}

Subscription ContentViewModel::follow(const AnyObservable& observable,
                                      void (ContentViewModel::*changed)()) {
    return observable.observe([this, changed] { emit(this->*changed)(); });
}

AnimatedNumber ContentViewModel::shown(ContentView::Screen screen) const {
    return {{.value = m_content.screen() == screen ? 1.0 : 0.0,
             .animation = m_content.screenAnimation()}};
}

AnimatedNumber ContentViewModel::hardwareCheckShown() const {
    return shown(ContentView::Screen::HardwareCheck);
}

AnimatedNumber ContentViewModel::warningShown() const {
    return shown(ContentView::Screen::Warning);
}

AnimatedNumber ContentViewModel::controlPanelShown() const {
    return shown(ContentView::Screen::ControlPanel);
}

QString ContentViewModel::emojiFamily() const {
    return QString::fromStdString(m_desktop.fontFamilies().emoji);
}

QUrl ContentViewModel::logo() const {
    const auto file = m_bundle.urlForResource("logo", "png");
    return file ? QUrl::fromLocalFile(QString::fromStdString(file->string())) : QUrl();
}

void ContentViewModel::setOn(int row, bool on) {
    m_content.toggleRows().at(static_cast<std::size_t>(row)).setOn(on);
}

void ContentViewModel::presentInfo(int row) {
    m_info.present(m_content.toggleRows().at(static_cast<std::size_t>(row)).text);
}

} // namespace quorvane
