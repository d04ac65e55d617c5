import QtQuick
import Plenaura

// The content of the main window: the sidebar, the gallery column, and over both the preview.
FocusScope {
    id: root

    required property WallpaperManager manager
    required property Windows windows
    property url previewURL

    Sidebar {
        id: sidebar

        width: 280
        height: parent.height
        focus: true
        manager: root.manager
        windows: root.windows
    }
    Separator {
        id: line

        anchors.left: sidebar.right
        height: parent.height
    }
    Item {
        anchors.left: line.right
        anchors.right: parent.right
        height: parent.height

        GalleryView {
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.top: parent.top
            anchors.bottom: statusBar.visible ? statusBar.top : parent.bottom
            manager: root.manager
            onPreviewRequested: url => root.previewURL = url
        }
        StatusBar {
            id: statusBar

            anchors.left: parent.left
            anchors.right: parent.right
            anchors.bottom: parent.bottom
            manager: root.manager
        }
    }
    PreviewOverlay {
        id: preview

        anchors.fill: parent
        source: root.previewURL
        onCloseRequested: root.previewURL = ""
        onApplyRequested: {
            root.manager.setWallpaper(root.previewURL);
            root.previewURL = "";
        }
    }
    Connections {
        target: root.manager

        function onDerivedChanged() {
            preview.recheck();
        }
    }
}
