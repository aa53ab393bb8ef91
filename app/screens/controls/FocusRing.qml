pragma ComponentBehavior: Bound

import QtQuick

// Marks the control that has the keyboard focus, whose child it is.
Rectangle {
    required property Item control

    anchors.fill: parent
    anchors.margins: -4
    visible: control.activeFocus
    color: "transparent"
    border { width: 2; color: "#ccffffff" }
}
