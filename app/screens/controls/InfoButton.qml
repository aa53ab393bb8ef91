pragma ComponentBehavior: Bound

import QtQuick

// The little circled "i" beside a label. It can be hit well beyond what is seen of it.
Pressable {
    id: root

    // A reader need not wait for an explanation to be closed: the next one has its turn after it.
    readable: true
    reach: 8
    implicitWidth: 13
    implicitHeight: 13

    Symbol {
        anchors.centerIn: parent
        name: "info.circle"
        size: 13
        opacity: root.down ? 0.9 : root.hovered ? 0.75 : 0.5
    }

    FocusRing {
        control: root
        anchors.margins: -5
        radius: 11.5
    }
}
