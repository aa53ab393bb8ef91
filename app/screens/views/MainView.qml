pragma ComponentBehavior: Bound

import QtQuick
import Quorvane

// The content of the window: one of the screens (two while they cross-fade), and the popup. Each is
// created when it becomes visible and destroyed afterwards, by a Repeater of 0 or 1 items, because
// Qt 6.4's Loader does not accept bound components.
Item {
    id: root

    required property ContentViewModel content

    SpringValue {
        id: hardwareCheckShown

        goal: root.content.hardwareCheckShown
    }

    SpringValue {
        id: warningShown

        goal: root.content.warningShown
    }

    SpringValue {
        id: controlPanelShown

        goal: root.content.controlPanelShown
    }

    FocusScope {
        anchors.fill: parent
        enabled: !root.content.infoShown
        focus: !root.content.infoShown

        Repeater {
            model: hardwareCheckShown.target > 0 || hardwareCheckShown.moving ? 1 : 0

            HardwareCheckView {
                anchors.fill: parent
                content: root.content
                opacity: hardwareCheckShown.value
                enabled: hardwareCheckShown.target > 0
            }
        }

        Repeater {
            model: warningShown.target > 0 || warningShown.moving ? 1 : 0

            MemeWarning {
                anchors.fill: parent
                content: root.content
                opacity: warningShown.value
                enabled: warningShown.target > 0
            }
        }

        Repeater {
            model: controlPanelShown.target > 0 || controlPanelShown.moving ? 1 : 0

            SufferingView {
                anchors.fill: parent
                content: root.content
                opacity: controlPanelShown.value
                enabled: controlPanelShown.target > 0
            }
        }
    }

    Repeater {
        model: root.content.infoShown ? 1 : 0

        InfoPopup {
            anchors.fill: parent
            title: root.content.infoTitle
            text: root.content.infoText
            onDismissed: root.content.dismissInfo()
        }
    }
}
