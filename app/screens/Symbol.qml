pragma ComponentBehavior: Bound

import QtQuick

// One of the drawn symbols, by its name. One that is missing leaves its place empty.
Image {
    id: root

    required property string name
    required property int size

    width: root.size
    height: root.size
    sourceSize: Qt.size(root.size, root.size)
    source: "qrc:/symbols/" + root.name + ".svg"

    // Whatever it stands beside says it.
    Accessible.ignored: true
}
