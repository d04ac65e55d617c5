pragma ComponentBehavior: Bound

import QtQuick
import Plenaura

// Which keys must still be entered, and where.
Column {
    id: root

    required property WallpaperManager manager

    visible: manager.missingKeys.length > 0
    spacing: 4

    Repeater {
        model: root.manager.missingKeys

        NoteLine {
            required property string modelData

            width: root.width
            symbol: "exclamationmark.triangle.fill"
            text: qsTr("Missing %1 API key").arg(modelData)
            color: Theme.orange
            wrapMode: Text.Wrap
        }
    }
    PlainLabel {
        width: root.width
        text: qsTr("Open Settings (⌘,)")
        font: Theme.caption2
        color: Theme.secondary
        wrapMode: Text.Wrap
    }
}
