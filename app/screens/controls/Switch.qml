pragma ComponentBehavior: Bound

import QtQuick

// Shows `checked`, which never changes by itself: toggled() requests the other state. The switch
// lies on a grey capsule whose rim is visible.
Item {
    id: root

    required property string name
    required property string description
    required property bool checked

    signal toggled

    implicitWidth: 42
    implicitHeight: 26
    activeFocusOnTab: true

    Accessible.role: Accessible.CheckBox
    Accessible.name: root.name
    Accessible.description: root.description
    Accessible.checkable: true
    Accessible.checked: root.checked
    Accessible.focusable: true
    // A screen reader also reaches disabled items.
    Accessible.onPressAction: if (root.enabled) root.toggled()
    Accessible.onToggleAction: if (root.enabled) root.toggled()

    Keys.onSpacePressed: event => { if (!event.isAutoRepeat) root.toggled() }
    Keys.onReturnPressed: event => { if (!event.isAutoRepeat) root.toggled() }
    Keys.onEnterPressed: event => { if (!event.isAutoRepeat) root.toggled() }

    Rectangle {
        anchors.fill: parent
        radius: 13
        color: Qt.alpha(Theme.gray, 0.4)
    }

    Rectangle {
        anchors.fill: track
        radius: track.radius
        color: mouse.containsMouse ? "#33ffffff" : "#1affffff"
        visible: track.opacity < 1
    }

    Rectangle {
        id: track

        anchors { fill: parent; margins: 2 }
        radius: 11
        color: mouse.containsMouse ? Qt.lighter(Theme.red, 1.15) : Theme.red
        opacity: root.checked ? 1 : 0

        Behavior on opacity { NumberAnimation { duration: 150 } }
    }

    Rectangle {
        id: knob

        x: root.checked ? track.x + track.width - width - 2 : track.x + 2
        y: 4
        width: mouse.containsPress ? 22 : 18
        height: 18
        radius: 9
        color: mouse.containsPress ? "#e6e6ea" : "white"

        Behavior on x { NumberAnimation { duration: 150; easing.type: Easing.OutCubic } }
        Behavior on width { NumberAnimation { duration: 100 } }
    }

    FocusRing {
        control: root
        anchors.margins: -3
        radius: 16
    }

    MouseArea {
        id: mouse

        anchors.fill: parent
        hoverEnabled: true
        onClicked: root.toggled()
    }
}
