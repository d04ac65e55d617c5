import QtQuick
import Plenaura

// Which services the next run will use.
Item {
    id: root

    required property WallpaperManager manager

    implicitHeight: provider.implicitHeight

    NoteLine {
        id: provider

        symbol: "cpu"
        text: root.manager.providerName
    }
    PlainLabel {
        objectName: "upscaleNote"
        anchors.left: provider.right
        anchors.leftMargin: 4
        visible: root.manager.needsUpscale
        text: qsTr("+ Gemini 4K")
        font: Theme.caption
        color: Theme.secondary
    }
}
