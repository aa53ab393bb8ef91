#include "app/screens/bridge/InfoPresenter.h"

#include <utility>

namespace quorvane {

InfoPresenter::InfoPresenter(ContentView& content, QObject* parent)
    : QObject(parent), m_content(content),
      m_followed(content.showInfo().observe([this] { follow(); })) {}

void InfoPresenter::present(const ToggleRowText& row) {
    if (isShown())
        m_waiting = &row;
    m_content.presentInfo(row);
}

void InfoPresenter::dismiss() {
    m_content.dismissInfo();
    if (const auto* row = std::exchange(m_waiting, nullptr))
        m_content.presentInfo(*row);
}

void InfoPresenter::follow() {
    if (isShown()) {
        m_title = QString::fromUtf8(m_content.activeInfoLabel().get());
        m_text = QString::fromUtf8(m_content.activeInfoText().get());
    }
    emit changed();
}

} // namespace quorvane
