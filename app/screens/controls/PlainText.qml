pragma ComponentBehavior: Bound

import QtQuick

// A text that screen readers read out.
Text {
    color: "white"
    textFormat: Text.PlainText

    Accessible.role: Accessible.StaticText
    Accessible.name: text
    Accessible.focusable: false
}
