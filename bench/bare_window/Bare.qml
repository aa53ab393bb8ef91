pragma ComponentBehavior: Bound

import QtQuick

Rectangle {
    id: root

    // Times a second at which one item's opacity changes; at 0 there is no such item.
    property real rate: 0

    width: 550
    height: 780
    color: "#102040"

    Repeater {
        model: root.rate > 0 ? 1 : 0

        Rectangle {
            id: item

            x: 175
            y: 100
            width: 200
            height: 60
            color: "#ff3b30"

            Timer {
                running: true
                repeat: true
                interval: 1000 / root.rate
                onTriggered: item.opacity = item.opacity < 0.02 ? 1 : item.opacity - 0.02
            }
        }
    }
}
