pragma ComponentBehavior: Bound

import QtQuick
import Quorvane

// A button as wide as its place, called by its text.
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

        // The button says it.
        Accessible.ignored: true
    }

    FocusRing {
        control: root
        radius: 25
    }
}
