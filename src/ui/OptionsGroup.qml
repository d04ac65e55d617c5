import QtQuick
import Plenaura

// How the picture is to be made.
Column {
    id: root

    required property WallpaperManager manager

    spacing: 10

    PlainLabel {
        text: qsTr("Options")
        font: Theme.subheadline
        color: Theme.secondary
    }
    ToggleSwitch {
        width: root.width
        title: qsTr("4K resolution")
        checked: root.manager.fourKEnabled
        onToggled: root.manager.fourKEnabled = checked
    }
    ToggleSwitch {
        width: root.width
        title: qsTr("NSFW")
        enabled: !root.manager.isOpenAIOverride
        checked: root.manager.nsfwEnabled
        onToggled: root.manager.nsfwEnabled = checked
    }
    NoteLine {
        objectName: "nsfwNote"
        width: root.width
        visible: root.manager.isOpenAIOverride && root.manager.nsfwEnabled
        symbol: "info.circle"
        text: qsTr("NSFW unavailable with OpenAI")
        font: Theme.caption2
        color: Theme.orange
        wrapMode: Text.Wrap
    }
}
