pragma ComponentBehavior: Bound

import QtQuick

// The hardware check while it runs.
Column {
    id: root

    required property bool turning

    spacing: 16

    Spinner {
        anchors.horizontalCenter: parent.horizontalCenter
        turning: root.turning
    }

    PlainText {
        anchors.horizontalCenter: parent.horizontalCenter
        text: "Scanning hardware..."
        font.pixelSize: 14
    }
}
