pragma Singleton
pragma ComponentBehavior: Bound

import QtQuick

// The colours that the screens share: the system's, as in its light appearance.
QtObject {
    readonly property color red: "#ff3b30"
    readonly property color yellow: "#ffcc00"
    readonly property color green: "#34c759"
    readonly property color cyan: "#32ade6"
    readonly property color blue: "#007aff"
    readonly property color gray: "#8e8e93"

    // The gradient behind the warning screen and the control panel, from top to bottom.
    readonly property color nightTop: Qt.rgba(0.05, 0.05, 0.15, 1)
    readonly property color nightMiddle: Qt.rgba(0.08, 0.08, 0.2, 1)
    readonly property color nightBottom: Qt.rgba(0.05, 0.05, 0.12, 1)
}
