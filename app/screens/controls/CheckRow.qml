pragma ComponentBehavior: Bound

import QtQuick
import Quorvane

// One result of the hardware check.
Row {
    id: root

    required property ContentViewModel content
    required property string feature
    required property bool passed
    required property string result

    spacing: 12

    PlainText {
        anchors.verticalCenter: parent.verticalCenter
        text: root.passed ? "✅" : "❌"
        font { family: root.content.emojiFamily; pixelSize: 16 }
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
