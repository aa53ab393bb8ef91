pragma ComponentBehavior: Bound

import QtQuick
import Quorvane

// The last warning before the control panel.
Backdrop {
    id: root

    required property ContentViewModel content

    upper: Theme.nightTop
    middle: Theme.nightMiddle
    lower: Theme.nightBottom

    SpringValue {
        id: signScale

        goal: root.content.textScale
    }

    Column {
        anchors.centerIn: parent
        width: parent.width - 60
        spacing: 14

        EmojiText {
            anchors.horizontalCenter: parent.horizontalCenter
            text: "⚠️"
            scale: signScale.value
            font.pixelSize: 80
        }

        PlainText {
            anchors.horizontalCenter: parent.horizontalCenter
            text: "CAUTION"
            font { pixelSize: 36; weight: Font.Black }
        }

        Image {
            anchors.horizontalCenter: parent.horizontalCenter
            visible: status === Image.Ready
            source: root.content.logo
            sourceSize.height: 120
        }

        PlainText {
            anchors.horizontalCenter: parent.horizontalCenter
            text: "YOU ARE ABOUT TO SEE WHAT"
            font { pixelSize: 18; weight: Font.Black }
        }

        GradientText {
            id: millions

            anchors.horizontalCenter: parent.horizontalCenter
            text: "MILLIONS"
            first: Theme.green
            middle: Theme.cyan
            last: Theme.blue
            font { pixelSize: 42; weight: Font.Black }

            Accessible.role: Accessible.StaticText
            Accessible.name: millions.text
            Accessible.focusable: false
        }

        PlainText {
            anchors.horizontalCenter: parent.horizontalCenter
            text: "OF WINDOWS USERS EXPERIENCE"
            font { pixelSize: 18; weight: Font.Black }
        }

        PlainText {
            anchors.horizontalCenter: parent.horizontalCenter
            text: "EVERY SINGLE DAY."
            font { pixelSize: 18; weight: Font.Black }
        }

        Item {
            width: 1
            height: 10
        }

        BigButton {
            width: parent.width
            name: "MAKE ME SUFFER 😭"
            color: Theme.red
            onActivated: root.content.enterSufferingMode()
        }
    }
}
