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

    FloatingEmojiField {
        anchors.fill: parent
        content: root.content
    }

    Column {
        anchors.centerIn: parent
        width: parent.width - 60
        spacing: 14

        HeavyText {
            anchors.horizontalCenter: parent.horizontalCenter
            text: "⚠️"
            emoji: true
            pixelSize: 80
            scale: signScale.value
            glowColor: Theme.yellow
            glowRadius: 20
            glow: root.content.glow
        }

        HeavyText {
            anchors.horizontalCenter: parent.horizontalCenter
            text: "CAUTION"
            pixelSize: 36
        }

        ShadowedImage {
            anchors.horizontalCenter: parent.horizontalCenter
            visible: present
            source: root.content.logo
            shownHeight: 130
            glowColor: "#4d000000"
            glowRadius: 10
            glowOffset: 4
            glow: 1
        }

        HeavyText {
            anchors.horizontalCenter: parent.horizontalCenter
            text: "YOU ARE ABOUT TO SEE WHAT"
            pixelSize: 18
        }

        HeavyText {
            anchors.horizontalCenter: parent.horizontalCenter
            text: "MILLIONS"
            pixelSize: 42
            colors: [Theme.green, Theme.cyan, Theme.blue]
            glowColor: Theme.cyan
            glowRadius: 15
            glow: root.content.glow
        }

        PlainText {
            anchors.horizontalCenter: parent.horizontalCenter
            text: "OF WINDOWS USERS EXPERIENCE"
            font.pixelSize: 18
        }

        PlainText {
            anchors.horizontalCenter: parent.horizontalCenter
            text: "EVERY SINGLE DAY."
            font.pixelSize: 18
        }

        Item {
            width: 1
            height: 10
        }

        BigButton {
            width: parent.width
            name: "MAKE ME SUFFER 😭"
            description: "Opens the control panel"
            color: Theme.red
            onActivated: root.content.enterSufferingMode()
        }
    }
}
