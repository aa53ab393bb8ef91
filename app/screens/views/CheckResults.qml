pragma ComponentBehavior: Bound

import QtQuick
import Quorvane

// What the hardware check found, and the button that goes on.
Column {
    id: root

    required property ContentViewModel content

    spacing: 26

    Column {
        x: 40
        spacing: 14

        Repeater {
            model: root.content.checkRows

            CheckRow {
                content: root.content
            }
        }
    }

    ContinueButton {
        width: root.width
        onActivated: root.content.confirmHardwareCheck()
    }
}
