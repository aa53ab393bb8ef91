pragma ComponentBehavior: Bound

import QtQuick

// What every button has in common: it is pressed with the mouse, with the keyboard and through the
// accessibility interface, which knows it by its name.
Item {
    id: root

    required property string name
    readonly property bool down: mouse.pressed

    signal activated

    activeFocusOnTab: true

    Accessible.role: Accessible.Button
    Accessible.name: root.name
    Accessible.focusable: true
    // A reader can press what the mouse can no longer reach.
    Accessible.onPressAction: if (root.enabled) root.activated()

    Keys.onSpacePressed: event => { if (!event.isAutoRepeat) root.activated() }
    Keys.onReturnPressed: event => { if (!event.isAutoRepeat) root.activated() }
    Keys.onEnterPressed: event => { if (!event.isAutoRepeat) root.activated() }

    MouseArea {
        id: mouse

        anchors.fill: parent
        onClicked: root.activated()
    }
}
