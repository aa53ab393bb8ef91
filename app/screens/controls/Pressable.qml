pragma ComponentBehavior: Bound

import QtQuick

// The base of every button: pressed with the mouse, with the keyboard and through the accessibility
// interface.
Item {
    id: root

    required property string name
    required property string description
    // Whether a screen reader can press it. Screen readers also reach disabled and covered items.
    property bool readable: root.enabled
    // Points by which the hit area is larger on each side.
    property int reach: 0
    readonly property bool down: mouse.containsPress
    readonly property bool hovered: mouse.containsMouse

    signal activated

    activeFocusOnTab: true

    Accessible.role: Accessible.Button
    Accessible.name: root.name
    Accessible.description: root.description
    Accessible.focusable: true
    Accessible.onPressAction: if (root.readable) root.activated()

    Keys.onSpacePressed: event => { if (!event.isAutoRepeat) root.activated() }
    Keys.onReturnPressed: event => { if (!event.isAutoRepeat) root.activated() }
    Keys.onEnterPressed: event => { if (!event.isAutoRepeat) root.activated() }

    MouseArea {
        id: mouse

        anchors { fill: parent; margins: -root.reach }
        hoverEnabled: true
        onClicked: root.activated()
    }
}
