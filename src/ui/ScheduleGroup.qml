import QtQuick
import Plenaura

// When pictures make themselves.
Column {
    id: root

    required property WallpaperManager manager

    spacing: 10

    PlainLabel {
        text: qsTr("Schedule")
        font: Theme.subheadline
        color: Theme.secondary
    }
    ToggleSwitch {
        width: root.width
        title: qsTr("Auto-generate")
        checked: root.manager.autoEnabled
        onToggled: root.manager.autoEnabled = checked
    }
    Row {
        id: row

        objectName: "intervalRow"
        visible: root.manager.autoEnabled
        spacing: 8

        PlainLabel {
            anchors.verticalCenter: parent.verticalCenter
            width: Math.min(implicitWidth, root.width - row.spacing - 110)
            text: qsTr("Every")
            color: Theme.secondary
            wrapMode: Text.Wrap
        }
        Picker {
            // Wider only where a language has longer names for the intervals.
            width: Math.min(implicitWidth, root.width - x)
            title: qsTr("Every")
            model: interval.labels
            currentIndex: interval.index
            onActivated: index => interval.index = index

            IntervalChoice {
                id: interval

                manager: root.manager
            }
        }
    }
    NoteLine {
        objectName: "nextNote"
        visible: root.manager.autoEnabled && !isNaN(root.manager.nextFireDate.getTime())
        symbol: "clock"
        text: qsTr("Next: %1").arg(root.manager.shortTime(root.manager.nextFireDate))
    }
}
