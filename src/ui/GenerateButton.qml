import QtQuick
import Plenaura

// The button that starts a run.
PushButton {
    required property WallpaperManager manager

    size: PushButton.Large
    prominent: true
    enabled: manager.canGenerate
    busy: manager.isLoading
    title: busy ? qsTr("Generating...") : qsTr("Generate & Set Wallpaper")
    onClicked: manager.generateAndSet()
}
