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

    Column {
        anchors { fill: parent; margins: 30; topMargin: 54 }
        spacing: 18

        EmojiText {
            anchors.horizontalCenter: parent.horizontalCenter
            text: "💀"
            font.pixelSize: 60
        }

        PlainText {
            anchors.horizontalCenter: parent.horizontalCenter
            text: "SIMULATION ACTIVE"
            color: Theme.red
            font { pixelSize: 28; weight: Font.Black }
        }

        Rectangle {
            anchors.horizontalCenter: parent.horizontalCenter
            width: banner.width + 44
            height: banner.height + 28
            radius: 14
            color: Theme.green

            Column {
                id: banner

                anchors.centerIn: parent
                spacing: 6

                PlainText {
                    anchors.horizontalCenter: parent.horizontalCenter
                    text: "WINDOWS MODE: ENABLED"
                    color: "black"
                    font { pixelSize: 16; weight: Font.Black }
                }

                PlainText {
                    anchors.horizontalCenter: parent.horizontalCenter
                    text: "🎉 Congratulations!"
                    color: "black"
                    font { pixelSize: 14; weight: Font.Bold }
                }

                PlainText {
                    anchors.horizontalCenter: parent.horizontalCenter
                    text: "Your MacBook is now officially a Windows laptop."
                    color: "black"
                    font { pixelSize: 14; weight: Font.Bold; italic: true }
                }
            }
        }

        Item {
            width: 1
            height: 2
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

    BigButton {
        anchors { left: parent.left; right: parent.right; bottom: parent.bottom }
        anchors { leftMargin: 60; rightMargin: 60; bottomMargin: 50 }
        name: "STOP, I'M SUFFERING 😭"
        color: Theme.red
        verticalPadding: 14
        onActivated: root.content.leaveSufferingMode()
    }
}
