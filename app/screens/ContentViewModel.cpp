#include "app/screens/ContentViewModel.h"

namespace quorvane {

ContentViewModel::ContentViewModel(ContentView& content, const Bundle& bundle, QObject* parent)
    : QObject(parent), m_content(content), m_bundle(bundle), m_checkRows(content),
      m_toggleRows(content),
      m_screenFollowed(follow(content.screen(), &ContentViewModel::screenChanged)) {}

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

QUrl ContentViewModel::logo() const {
    const auto file = m_bundle.urlForResource("logo", "png");
    return file ? QUrl::fromLocalFile(toQString(file->string())) : QUrl();
}

void ContentViewModel::setOn(int row, bool on) {
    m_content.toggleRows().at(static_cast<std::size_t>(row)).setOn(on);
}

void ContentViewModel::presentInfo(int row) {
    m_content.presentInfo(m_content.toggleRows().at(static_cast<std::size_t>(row)).text);
}

} // namespace quorvane
