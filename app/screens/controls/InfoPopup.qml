pragma ComponentBehavior: Bound

import QtQuick

// Explains an effect, over whatever screen is shown, until it is dismissed.
FocusScope {
    id: root

    required property string title
    required property string text

    signal dismissed

    Accessible.role: Accessible.AlertMessage
    Accessible.name: root.title

    Component.onCompleted: root.forceActiveFocus()

    Keys.onEscapePressed: root.dismissed()
    Keys.onReturnPressed: root.dismissed()
    Keys.onEnterPressed: root.dismissed()

    Rectangle {
        anchors.fill: parent
        color: "#99000000"

        // Takes the clicks that would reach the screen below.
        MouseArea {
            anchors.fill: parent
        }
    }

    Rectangle {
        anchors.centerIn: parent
        width: 340
        height: texts.height + 48
        radius: 18
        color: "#23233a"
        border { width: 1; color: "#26ffffff" }

        Column {
            id: texts

            anchors.centerIn: parent
            width: parent.width - 48
            spacing: 12

            PlainText {
                width: parent.width
                text: root.title
                horizontalAlignment: Text.AlignHCenter
                wrapMode: Text.Wrap
                font { pixelSize: 17; weight: Font.Bold }
            }

            PlainText {
                width: parent.width
                text: root.text
                color: "#d9ffffff"
                horizontalAlignment: Text.AlignHCenter
                wrapMode: Text.Wrap
                lineHeight: 1.15
                font.pixelSize: 13
            }

            Item {
                width: 1
                height: 2
            }

            Pressable {
                id: ok

                width: parent.width
                height: 36
                focus: true
                name: "OK"
                description: "Closes the explanation"
                onActivated: root.dismissed()

                Rectangle {
                    anchors.fill: parent
                    radius: 10
                    color: Theme.blue
                    opacity: ok.down ? 0.75 : ok.hovered ? 0.9 : 1

                    Text {
                        anchors.centerIn: parent
                        text: ok.name
                        color: "white"
                        font { pixelSize: 14; weight: Font.DemiBold }

                        Accessible.ignored: true
                    }
                }

                FocusRing {
                    control: ok
                    radius: 13
                }
            }
        }
    }
}
