#include "app/screens/MainWindow.h"

#include <QEvent>
#include <QGuiApplication>
#include <QQmlEngine>
#include <QQuickItem>

#include "app/OrrowinApp.h"
#include "app/screens/Fonts.h"
#include "app/screens/scene/SymbolProvider.h"

void qml_register_types_Quorvane();

namespace quorvane {

namespace {

// On another thread: loading the installed fonts and creating the window, which loads the graphics
// driver, take most of the time before the first frame and are independent of each other. Where no
// thread can be started, get() loads them.
std::future<QFont> loadTextFont(const Desktop& desktop) {
    Fonts::setFamilies(desktop.fontFamilies());
    return std::async(Fonts::text, QGuiApplication::font());
}

} // namespace

MainWindow::MainWindow(ContentView& content, const Platform& platform, Desktop& desktop)
    : m_content(content), m_desktop(desktop), m_model(content, platform, desktop),
      m_font(loadTextFont(desktop)),
      m_coverFollowed(desktop.windowIsCovered().observe([this] { updateSeen(); })) {
    // Keeps the linker from dropping the code that registers the QML types.
    [[maybe_unused]] auto* volatile keep = &qml_register_types_Quorvane;
    // For text that is neither moved nor scaled, native rendering is sharper and starts faster.
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
    // Deleted by the engine.
    m_window.engine()->addImageProvider(QStringLiteral("symbols"), new SymbolProvider(m_desktop));
    m_window.setInitialProperties({{"content", QVariant::fromValue(&m_model)}});
    m_window.setSource(QUrl("qrc:/qt/qml/Quorvane/MainView.qml"));
    if (m_window.status() != QQuickView::Ready)
        return false;
    // Until onAppear() has looked for the lid sensor, a press through a screen reader could not
    // start it.
    m_window.rootObject()->setEnabled(false);
    m_window.show();
    return true;
}

void MainWindow::close() {
    // A window that is not on screen gets no close event.
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

// The controller decodes its sound in onAppear(). That waits for the first frame, so that the
// window shows at once; no sound is needed before the user has pressed something.
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
