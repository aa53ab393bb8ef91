pragma ComponentBehavior: Bound

import QtQuick

// A screen's gradient, from top to bottom.
Rectangle {
    id: root

    required property color upper
    required property color middle
    required property color lower

    gradient: Gradient {
        GradientStop { position: 0; color: root.upper }
        GradientStop { position: 0.5; color: root.middle }
        GradientStop { position: 1; color: root.lower }
    }
}
