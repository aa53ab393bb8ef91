pragma ComponentBehavior: Bound

import QtQuick

// Emoji come out in colour only from a font that is named: left to itself, the toolkit takes the
// outlines that an ordinary font may have for some of them.
PlainText {
    font.family: Qt.platform.os === "osx" ? "Apple Color Emoji" : "Noto Color Emoji"
}
