#pragma once

#include <QFont>
#include <QObject>
#include <QQuickView>

#include <future>

#include "app/screens/bridge/ContentViewModel.h"

namespace quorvane {

/// The program's one window. Shows the controller and calls its lifecycle hooks, each once:
/// onAppear() after the first frame, onDisappear() when the window is closed. Main thread only.
class MainWindow final : public QObject {
    Q_OBJECT

public:
    /// `content`, the platform's services and `desktop` outlive the window.
    MainWindow(ContentView& content, const Platform& platform, Desktop& desktop);
    ~MainWindow() override;

    /// False if the screens could not be loaded; the errors are on standard error.
    [[nodiscard]] bool show();
    /// The same as its close button. May be called twice.
    void close();

    [[nodiscard]] QQuickView& window() { return m_window; }

    bool eventFilter(QObject* watched, QEvent* event) override;

signals:
    /// After the controller's onAppear().
    void appeared();
    /// After the controller's onDisappear().
    void closed();

private:
    void onFirstFrame();
    void onClosed();
    void updateSeen();

    ContentView& m_content;
    Desktop& m_desktop;
    ContentViewModel m_model;
    std::future<QFont> m_font;
    QQuickView m_window;
    Subscription m_coverFollowed;
    bool m_appeared = false;
    bool m_closed = false;
};

} // namespace quorvane
