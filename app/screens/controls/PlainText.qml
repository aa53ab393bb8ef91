pragma ComponentBehavior: Bound

import QtQuick

// A text that is read out as it stands.
Text {
    color: "white"
    textFormat: Text.PlainText

    Accessible.role: Accessible.StaticText
    Accessible.name: text
    Accessible.focusable: false
}
