#include "app/screens/MainWindow.h"

#include <QEvent>
#include <QGuiApplication>
#include <QQmlEngine>
#include <QQuickItem>

#include "app/OrrowinApp.h"
#include "app/screens/Fonts.h"
#ifdef QUORVANE_MACOS
#include "app/screens/SystemSymbols.h"
#endif

void qml_register_types_Quorvane();

namespace quorvane {

MainWindow::MainWindow(ContentView& content, const Platform& platform, Desktop& desktop)
    : m_content(content), m_desktop(desktop), m_model(content, platform, desktop),
      // The toolkit's first look at the installed fonts and the window, which loads the graphics
      // driver, are what takes longest before the first frame, and neither needs the other.
      m_font(std::async(std::launch::async, Fonts::text, QGuiApplication::font())),
      m_coverFollowed(desktop.windowIsCovered().observe([this] { updateSeen(); })) {
    // The screens' types register themselves, if only the linker keeps them.
    [[maybe_unused]] auto* volatile keep = &qml_register_types_Quorvane;
    // The window's texts stand still at their natural size, where the system's own rendering is
    // both sharper and faster to start with.
    QQuickWindow::setTextRenderType(QQuickWindow::NativeTextRendering);

    const QSize size(OrrowinApp::windowWidth, OrrowinApp::windowHeight);
    m_window.setTitle(QString::fromUtf8(OrrowinApp::windowTitle));
    m_window.resize(size);
    m_window.setMinimumSize(size);
    m_window.setMaximumSize(size);
    m_window.setResizeMode(QQuickView::SizeRootObjectToView);
    m_window.setColor(Qt::black);
    m_window.create();
    QGuiApplication::setFont(m_font.get());
    m_window.installEventFilter(this);
    connect(&m_window, &QQuickWindow::frameSwapped, this, &MainWindow::onFirstFrame,
            static_cast<Qt::ConnectionType>(Qt::QueuedConnection | Qt::SingleShotConnection));
}

MainWindow::~MainWindow() {
    m_window.removeEventFilter(this);
}

bool MainWindow::show() {
    m_window.engine()->addImportPath("qrc:/qt/qml");
#ifdef QUORVANE_MACOS
    // The engine's to delete.
    m_window.engine()->addImageProvider(QStringLiteral("symbols"), new SystemSymbols);
#endif
    m_window.setInitialProperties({{"content", QVariant::fromValue(&m_model)}});
    m_window.setSource(QUrl("qrc:/qt/qml/Quorvane/MainView.qml"));
    if (m_window.status() != QQuickView::Ready)
        return false;
    // A screen reader can press before there is anything to see, but not before the controller has
    // appeared: the sensor that a press starts would not have been looked for yet.
    m_window.rootObject()->setEnabled(false);
    m_window.show();
    return true;
}

void MainWindow::close() {
    // A window that is not on screen would not be told that it is closed.
    if (!m_window.close() || !m_closed)
        onClosed();
}

bool MainWindow::eventFilter(QObject* watched, QEvent* event) {
    if (watched == &m_window && event->type() == QEvent::Close)
        onClosed();
    if (watched == &m_window && (event->type() == QEvent::Expose || event->type() == QEvent::Hide))
        updateSeen();
    return QObject::eventFilter(watched, event);
}

// The controller reads and decodes its sound when it appears. That waits for the first frame, so
// that the window is there at once; nothing can be heard before a person has pressed something.
void MainWindow::onFirstFrame() {
    if (m_appeared || m_closed)
        return;
    m_appeared = true;
    m_desktop.watchWindow(m_window.winId());
    m_content.onAppear();
    m_window.rootObject()->setEnabled(true);
    emit appeared();
}

void MainWindow::updateSeen() {
    m_model.setSeen(m_window.isExposed() && !m_desktop.windowIsCovered());
}

void MainWindow::onClosed() {
    if (m_closed)
        return;
    m_closed = true;
    m_content.onDisappear();
    emit closed();
}

} // namespace quorvane
