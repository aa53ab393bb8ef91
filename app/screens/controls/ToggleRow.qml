pragma ComponentBehavior: Bound

import QtQuick
import Quorvane

// One effect of the control panel: its symbol, label, info button, switch and, if any, hint.
Item {
    id: root

    required property int index
    required property bool isOn
    required property string icon
    required property string label
    required property string hint
    required property ContentViewModel content

    implicitHeight: 26 + (hintText.visible ? hintText.implicitHeight + 1 : 0)

    Row {
        height: 26
        spacing: 10

        Symbol {
            anchors.verticalCenter: parent.verticalCenter
            name: root.icon
            size: 18
            opacity: 0.7
        }

        Text {
            anchors.verticalCenter: parent.verticalCenter
            // Keeps the info button on whole pixels, so that it is sharp.
            width: Math.ceil(implicitWidth)
            text: root.label
            textFormat: Text.PlainText
            color: "white"
            font { pixelSize: 14; weight: Font.DemiBold }

            // The switch's accessible name is the same text.
            Accessible.ignored: true
        }

        InfoButton {
            anchors.verticalCenter: parent.verticalCenter
            name: "About " + root.label
            description: "Explains what the switch does"
            onActivated: root.content.presentInfo(root.index)
        }
    }

    Switch {
        anchors.right: parent.right
        name: root.label
        description: root.hint
        checked: root.isOn
        onToggled: root.content.setOn(root.index, !root.isOn)
    }

    Text {
        id: hintText

        anchors { left: parent.left; leftMargin: 28; right: parent.right; bottom: parent.bottom }
        visible: root.hint !== ""
        text: root.hint
        textFormat: Text.PlainText
        wrapMode: Text.Wrap
        color: Theme.yellow
        opacity: 0.8
        font { pixelSize: 11; weight: Font.Medium }

        // The switch's accessible description is the same text.
        Accessible.ignored: true
    }
}
