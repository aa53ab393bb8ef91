pragma ComponentBehavior: Bound

import QtQuick
import Quorvane

// The hardware check, shown until the user has confirmed it once.
Backdrop {
    id: root

    required property ContentViewModel content

    upper: "black"
    middle: Qt.tint("black", Qt.alpha(Theme.blue, 0.6))
    lower: "black"

    Column {
        id: stack

        anchors.centerIn: parent
        width: parent.width - 60
        spacing: 18

        PlainText {
            anchors.horizontalCenter: parent.horizontalCenter
            text: "🔧"
            font { family: root.content.emojiFamily; pixelSize: 70 }
        }

        PlainText {
            anchors.horizontalCenter: parent.horizontalCenter
            text: "HARDWARE CHECK"
            font.pixelSize: 30
        }

        PlainText {
            width: parent.width
            text: "Before we begin, let's make sure\nyour Mac is ready for the experience."
            color: "#b3ffffff"
            horizontalAlignment: Text.AlignHCenter
            font.pixelSize: 15
        }

        Item {
            width: 1
            height: 6
        }

        Repeater {
            model: root.content.isChecking ? 1 : 0

            Scanning {
                anchors.horizontalCenter: stack.horizontalCenter
                // Evaluated once more as the window closes, when `root` no longer exists.
                turning: root?.content.animates ?? false
            }
        }

        Repeater {
            model: !root.content.isChecking && root.content.checkDone ? 1 : 0

            CheckResults {
                width: stack.width
                content: root.content
            }
        }

        Repeater {
            model: !root.content.isChecking && !root.content.checkDone ? 1 : 0

            BigButton {
                width: stack.width
                name: "CHECK HARDWARE 🔍"
                description: "Looks at what this machine has"
                color: Qt.alpha(Theme.cyan, 0.8)
                onActivated: root.content.runHardwareCheck()
            }
        }
    }
}
