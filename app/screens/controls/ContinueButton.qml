pragma ComponentBehavior: Bound

import QtQuick

BigButton {
    name: "CONTINUE"
    description: "Goes on, whatever was found"
    color: Qt.alpha(Theme.green, 0.8)
}
