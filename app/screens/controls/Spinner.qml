pragma ComponentBehavior: Bound

import QtQuick

// Indeterminate progress.
Item {
    id: root

    required property bool turning

    // 1.5 times the usual size of such a wheel.
    implicitWidth: 48
    implicitHeight: 48

    Accessible.role: Accessible.ProgressBar
    Accessible.name: "Scanning"

    Item {
        id: wheel

        anchors.fill: parent

        Repeater {
            model: 12

            Rectangle {
                id: spoke

                required property int index

                x: 22
                width: 4
                height: 12
                radius: 2
                color: "white"
                opacity: 0.12 + 0.07 * spoke.index
                antialiasing: true
                transform: Rotation { origin { x: 2; y: 24 } angle: 30 * spoke.index }
            }
        }

        // One spoke a step.
        Timer {
            running: root.turning
            repeat: true
            interval: 83
            onTriggered: wheel.rotation = (wheel.rotation + 30) % 360
        }
    }
}
