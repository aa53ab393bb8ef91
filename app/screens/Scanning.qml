pragma ComponentBehavior: Bound

import QtQuick

// The hardware check is going on.
Column {
    spacing: 16

    Spinner {
        anchors.horizontalCenter: parent.horizontalCenter
    }

    PlainText {
        anchors.horizontalCenter: parent.horizontalCenter
        text: "Scanning hardware..."
        font.pixelSize: 14
    }
}
