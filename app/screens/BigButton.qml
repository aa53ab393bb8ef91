pragma ComponentBehavior: Bound

import QtQuick

// A button as wide as its place, called by its text.
Pressable {
    id: root

    required property color color
    property int verticalPadding: 16

    implicitHeight: label.implicitHeight + 2 * root.verticalPadding

    Rectangle {
        anchors.fill: parent
        radius: 20
        color: root.color
        opacity: root.down ? 0.75 : 1

        Text {
            id: label

            anchors.centerIn: parent
            text: root.name
            textFormat: Text.PlainText
            color: "white"
            font { pixelSize: 20; weight: Font.Black }

            Accessible.ignored: true
        }
    }

    FocusRing {
        control: root
        radius: 24
    }
}
