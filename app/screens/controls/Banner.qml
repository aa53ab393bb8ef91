pragma ComponentBehavior: Bound

import QtQuick
import Quorvane

// The congratulation on the control panel.
SmoothRectangle {
    implicitWidth: words.width + 44
    implicitHeight: words.height + 28
    radius: 14
    color: Theme.green

    Column {
        id: words

        anchors.centerIn: parent
        spacing: 6

        HeavyText {
            anchors.horizontalCenter: parent.horizontalCenter
            text: "WINDOWS MODE: ENABLED"
            pixelSize: 16
            color: "black"
        }

        PlainText {
            anchors.horizontalCenter: parent.horizontalCenter
            text: "🎉 Congratulations!"
            color: "black"
            font { pixelSize: 14; weight: Font.Bold }
        }

        PlainText {
            anchors.horizontalCenter: parent.horizontalCenter
            text: "Your MacBook is now officially a Windows laptop."
            color: "black"
            font { pixelSize: 14; weight: Font.Bold; italic: true }
        }
    }
}
