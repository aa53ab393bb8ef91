#include <QGuiApplication>
#include <QQuickView>

// The cost of Qt Quick itself: a minimal program with a window of the same size, which with a
// number as its argument changes one item's opacity so many times a second.
int main(int argc, char** argv) {
    const QGuiApplication application(argc, argv);
    QQuickView window;
    window.setTitle("bare_window");
    window.resize(550, 780);
    if (argc > 1)
        window.setInitialProperties({{"rate", QString::fromLocal8Bit(argv[1]).toDouble()}});
    window.setSource(QUrl("qrc:/bare/Bare.qml"));
    window.show();
    return QGuiApplication::exec();
}
