pragma ComponentBehavior: Bound

import QtQuick
import Quorvane

// One effect of the control panel: what it is called, what it does, and its switch.
Item {
    id: root

    required property int index
    required property string label
    required property bool isOn
    required property ContentViewModel content

    implicitHeight: 26

    Row {
        height: parent.height
        spacing: 10

        // The icon's place.
        Item {
            width: 18
            height: parent.height
        }

        Text {
            anchors.verticalCenter: parent.verticalCenter
            text: root.label
            textFormat: Text.PlainText
            color: "white"
            font { pixelSize: 14; weight: Font.DemiBold }

            // The switch says it.
            Accessible.ignored: true
        }

        InfoButton {
            anchors.verticalCenter: parent.verticalCenter
            name: "About " + root.label
            onActivated: root.content.presentInfo(root.index)
        }
    }

    Switch {
        anchors { right: parent.right; verticalCenter: parent.verticalCenter }
        name: root.label
        checked: root.isOn
        onToggled: root.content.setOn(root.index, !root.isOn)
    }
}
