pragma ComponentBehavior: Bound

import QtQuick

// A white symbol by its name.
Image {
    id: root

    required property string name
    required property int size

    width: root.size
    height: root.size
    sourceSize { width: root.size; height: root.size }
    source: "image://symbols/" + root.name

    // Its control has an accessible name.
    Accessible.ignored: true
}
