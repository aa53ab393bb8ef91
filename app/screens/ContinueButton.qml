pragma ComponentBehavior: Bound

import QtQuick

BigButton {
    name: "CONTINUE"
    color: Qt.alpha(Theme.green, 0.8)
}
