pragma ComponentBehavior: Bound

import QtQuick

Rectangle {
    width: 550
    height: 780
    color: "#102040"
}
