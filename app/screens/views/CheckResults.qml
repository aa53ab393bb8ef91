pragma ComponentBehavior: Bound

import QtQuick
import Quorvane

// The results of the hardware check, and the button that continues.
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
