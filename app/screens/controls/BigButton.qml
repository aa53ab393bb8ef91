pragma ComponentBehavior: Bound

import QtQuick
import Quorvane

// A big button. Its text is its accessible name.
Pressable {
    id: root

    required property color color
    property int verticalPadding: 16

    implicitHeight: label.implicitHeight + 2 * root.verticalPadding

    SmoothRectangle {
        anchors.fill: parent
        radius: 20
        color: root.color
        opacity: root.down ? 0.75 : root.hovered ? 0.9 : 1
    }

    RoundedText {
        id: label

        anchors.centerIn: parent
        text: root.name
        pixelSize: 20
        opacity: root.down ? 0.75 : 1

        // The button's accessible name is the same text.
        Accessible.ignored: true
    }

    FocusRing {
        control: root
        radius: 25
    }
}
