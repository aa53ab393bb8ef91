pragma ComponentBehavior: Bound

import QtQuick

// Something is going on.
Item {
    id: root

    required property bool turning

    // Half as large again as such a thing usually is.
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

        // A step a spoke, as such wheels turn.
        Timer {
            running: root.turning
            repeat: true
            interval: 83
            onTriggered: wheel.rotation = (wheel.rotation + 30) % 360
        }
    }
}
