pragma ComponentBehavior: Bound

import QtQuick

// What every button has in common: it is pressed with the mouse, with the keyboard and through the
// accessibility interface, which knows it by its name.
Item {
    id: root

    required property string name
    required property string description
    // Whether a reader can press it: a reader can reach what the mouse can no longer reach.
    property bool readable: root.enabled
    // How far beyond its bounds it can be hit.
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
