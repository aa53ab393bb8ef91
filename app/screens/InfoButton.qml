pragma ComponentBehavior: Bound

import QtQuick

// The little circled "i" beside a label.
Pressable {
    id: root

    implicitWidth: 21
    implicitHeight: 21

    Rectangle {
        anchors.centerIn: parent
        width: 13
        height: 13
        radius: 6.5
        color: "transparent"
        opacity: root.down ? 0.8 : 0.5
        border { width: 1; color: "white" }

        Text {
            anchors.centerIn: parent
            text: "i"
            color: "white"
            font { pixelSize: 9; weight: Font.DemiBold }

            Accessible.ignored: true
        }
    }

    FocusRing {
        control: root
        anchors.margins: 0
        radius: 10.5
    }
}
