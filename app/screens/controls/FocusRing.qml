pragma ComponentBehavior: Bound

import QtQuick

// Shows which control the keyboard acts on; stands around the control that it is a child of.
Rectangle {
    required property Item control

    anchors.fill: parent
    anchors.margins: -4
    visible: control.activeFocus
    color: "transparent"
    border { width: 2; color: "#ccffffff" }
}
