pragma ComponentBehavior: Bound

import QtQuick

// Shows a state that somebody else keeps, and asks for the other one when it is toggled.
Item {
    id: root

    required property string name
    required property bool checked

    signal toggled

    implicitWidth: 42
    implicitHeight: 26
    activeFocusOnTab: true

    Accessible.role: Accessible.CheckBox
    Accessible.name: root.name
    Accessible.checkable: true
    Accessible.checked: root.checked
    Accessible.focusable: true
    // A reader can toggle what the mouse can no longer reach.
    Accessible.onPressAction: if (root.enabled) root.toggled()
    Accessible.onToggleAction: if (root.enabled) root.toggled()

    Keys.onSpacePressed: event => { if (!event.isAutoRepeat) root.toggled() }

    Rectangle {
        anchors.fill: parent
        radius: 13
        color: Qt.alpha(Theme.gray, 0.4)
    }

    Rectangle {
        anchors.fill: parent
        radius: 13
        color: Theme.red
        opacity: root.checked ? 1 : 0

        Behavior on opacity { NumberAnimation { duration: 150 } }
    }

    Rectangle {
        x: root.checked ? 18 : 2
        y: 2
        width: 22
        height: 22
        radius: 11
        color: "white"

        Behavior on x { NumberAnimation { duration: 150; easing.type: Easing.OutCubic } }
    }

    FocusRing {
        control: root
        radius: 17
    }

    MouseArea {
        anchors.fill: parent
        onClicked: root.toggled()
    }
}
