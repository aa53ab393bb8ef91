pragma ComponentBehavior: Bound

import QtQuick
import Quorvane

// A text of black weight that screen readers read out.
RoundedText {
    id: root

    property color color: "white"

    colors: [root.color]

    Accessible.role: Accessible.StaticText
    Accessible.name: root.text
    Accessible.focusable: false
}
