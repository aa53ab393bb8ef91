pragma ComponentBehavior: Bound

import QtQuick

// Something is going on. It turns for as long as it exists.
Item {
    id: root

    implicitWidth: 30
    implicitHeight: 30

    Accessible.role: Accessible.ProgressBar
    Accessible.name: "Scanning"

    Repeater {
        model: 8

        Rectangle {
            id: spoke

            required property int index

            x: root.width / 2 - width / 2
            y: 0
            width: 4
            height: 9
            radius: 2
            color: "white"
            opacity: 0.15 + 0.1 * spoke.index
            transform: Rotation { origin { x: 2; y: 15 } angle: 45 * spoke.index }
        }
    }

    NumberAnimation on rotation {
        from: 0
        to: 360
        duration: 1000
        loops: Animation.Infinite
    }
}
