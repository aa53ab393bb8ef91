#pragma once

#include <QObject>
#include <QString>

#include "app/ContentView.h"

namespace quorvane {

/// The popup on screen. While it is up its text stays the same: of the info buttons pressed
/// meanwhile, the last one's text is shown once it is dismissed. Main thread only.
class InfoPresenter final : public QObject {
    Q_OBJECT

public:
    /// `content` outlives it.
    explicit InfoPresenter(ContentView& content, QObject* parent = nullptr);

    [[nodiscard]] bool isShown() const { return m_content.showInfo(); }

    [[nodiscard]] QString title() const { return m_title; }

    [[nodiscard]] QString text() const { return m_text; }

    void present(const ToggleRowText& row);
    void dismiss();

signals:
    /// Any of the values above.
    void changed();

private:
    void follow();

    ContentView& m_content;
    QString m_title;
    QString m_text;
    const ToggleRowText* m_waiting = nullptr;
    Subscription m_followed;
};

} // namespace quorvane
