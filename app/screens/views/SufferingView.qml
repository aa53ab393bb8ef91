pragma ComponentBehavior: Bound

import QtQuick
import Quorvane

// The control panel.
Backdrop {
    id: root

    required property ContentViewModel content

    upper: Theme.nightTop
    middle: Theme.nightMiddle
    lower: Theme.nightBottom

    FloatingEmojiField {
        anchors.fill: parent
        content: root.content
    }

    Item {
        anchors { left: parent.left; right: parent.right; top: parent.top; bottom: stop.top }
        anchors { leftMargin: 30; rightMargin: 30; topMargin: 30 }

        Column {
            anchors.centerIn: parent
            width: parent.width
            spacing: 18

            PlainText {
                anchors.horizontalCenter: parent.horizontalCenter
                text: "💀"
                font { family: root.content.emojiFamily; pixelSize: 60 }
            }

            HeavyText {
                anchors.horizontalCenter: parent.horizontalCenter
                text: "SIMULATION ACTIVE"
                pixelSize: 28
                color: Theme.red
                glowColor: Theme.red
                glowRadius: 10
                glow: root.content.glow
            }

            Banner {
                anchors.horizontalCenter: parent.horizontalCenter
            }

            Item {
                width: 1
                height: 8
            }

            Column {
                id: rows

                x: 40
                width: parent.width - 80
                spacing: 10

                Repeater {
                    model: root.content.toggleRows

                    ToggleRow {
                        width: rows.width
                        content: root.content
                    }
                }
            }
        }
    }

    BigButton {
        id: stop

        anchors { left: parent.left; right: parent.right; bottom: parent.bottom }
        anchors { leftMargin: 60; rightMargin: 60; bottomMargin: 50 }
        name: "STOP, I'M SUFFERING 😭"
        description: "Switches everything off and goes back to the warning"
        color: Theme.red
        verticalPadding: 14
        onActivated: root.content.leaveSufferingMode()
    }
}
