#include <QGuiApplication>
#include <QQuickView>

// What the toolkit itself takes: the least program that puts a window of the same size on screen.
int main(int argc, char** argv) {
    const QGuiApplication application(argc, argv);
    QQuickView window;
    window.resize(550, 780);
    window.setSource(QUrl("qrc:/bare/Bare.qml"));
    window.show();
    return QGuiApplication::exec();
}
