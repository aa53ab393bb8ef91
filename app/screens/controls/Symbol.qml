pragma ComponentBehavior: Bound

import QtQuick

// A symbol by its name: the system's own on a Mac, one of the drawn ones elsewhere. One that is
// missing leaves its place empty.
Image {
    id: root

    required property string name
    required property int size

    width: root.size
    height: root.size
    sourceSize { width: root.size; height: root.size }
    source: Qt.platform.os === "osx" ? "image://symbols/" + root.name
                                     : "qrc:/symbols/" + root.name + ".svg"

    // Whatever it stands beside says it.
    Accessible.ignored: true
}
