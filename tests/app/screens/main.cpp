#include <QGuiApplication>

#include <gmock/gmock.h>

// The screens are drawn by the software scene graph into memory: no display is needed, and the same
// pixels come out everywhere.
int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    if (!qEnvironmentVariableIsSet("QT_QUICK_BACKEND"))
        qputenv("QT_QUICK_BACKEND", "software");
    // A frame that is asked for is drawn at once.
    qputenv("QT_QPA_UPDATE_IDLE_TIME", "0");
    testing::InitGoogleMock(&argc, argv);
    const QGuiApplication application(argc, argv);
    QGuiApplication::setQuitOnLastWindowClosed(false);
    return RUN_ALL_TESTS();
}
