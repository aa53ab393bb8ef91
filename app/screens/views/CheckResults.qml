pragma ComponentBehavior: Bound

import QtQuick
import Quorvane

// What the hardware check found, and the way on.
Column {
    id: root

    required property ContentViewModel content

    spacing: 26

    Column {
        x: 40
        spacing: 14

        Repeater {
            model: root.content.checkRows

            CheckRow {}
        }
    }

    ContinueButton {
        width: root.width
        onActivated: root.content.confirmHardwareCheck()
    }
}
