pragma ComponentBehavior: Bound

import QtQuick

// One result of the hardware check.
Row {
    id: root

    required property string feature
    required property bool passed
    required property string result

    spacing: 12

    EmojiText {
        anchors.verticalCenter: parent.verticalCenter
        text: root.passed ? "✅" : "❌"
        font.pixelSize: 16
    }

    Column {
        spacing: 2

        PlainText {
            text: root.feature
            font { pixelSize: 14; weight: Font.Bold }
        }

        PlainText {
            text: root.result
            color: root.passed ? Theme.green : Theme.yellow
            opacity: 0.7
            font { pixelSize: 11; weight: Font.Medium }
        }
    }
}
