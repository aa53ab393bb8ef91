pragma ComponentBehavior: Bound

import QtQuick

// The little circled "i" beside a label. Its hit area is larger than the symbol.
Pressable {
    id: root

    // Also while a popup is shown: this button's text is then shown after it.
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
