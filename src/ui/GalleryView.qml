pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Plenaura

// All earlier wallpapers.
FocusScope {
    id: root

    required property WallpaperManager manager

    signal previewRequested(url: url)

    EmptyGallery {
        anchors.centerIn: parent
        width: parent.width - 48
        visible: grid.count === 0
    }
    GridView {
        id: grid

        readonly property int padding: 24
        readonly property int gap: 20
        readonly property int columns: Math.max(1, Math.floor((width - 2 * padding + gap) / (220 + gap)))
        readonly property int tileWidth: Math.floor((width - 2 * padding + gap) / columns) - gap
        readonly property int tileHeight: 130 + 6 + Math.ceil(caption.height)
        // In coarse steps, so that a window that is being resized does not decode at every one.
        readonly property size box: Qt.size(Math.ceil(tileWidth / 64) * 64 * Screen.devicePixelRatio, 130 * Screen.devicePixelRatio)

        function focusTile() {
            if (currentIndex < 0)
                currentIndex = Math.max(0, indexAt(padding, contentY + height / 4));
            currentItem?.forceActiveFocus(Qt.TabFocusReason);
        }

        anchors.fill: parent
        visible: count > 0
        focus: true
        clip: true
        activeFocusOnTab: count > 0 && !(currentItem?.activeFocus ?? false)
        cellWidth: tileWidth + gap
        cellHeight: tileHeight + gap
        leftMargin: padding
        topMargin: padding
        bottomMargin: padding - gap
        cacheBuffer: 0
        currentIndex: -1
        boundsBehavior: Flickable.StopAtBounds
        keyNavigationEnabled: true
        highlightMoveDuration: 120
        onActiveFocusChanged: if (activeFocus) focusTile()
        onCurrentItemChanged: if (activeFocus) currentItem?.forceActiveFocus(Qt.OtherFocusReason)

        T.ScrollBar.vertical: ThinScrollBar {}

        model: GalleryModel {
            manager: root.manager
        }
        delegate: HistoryTile {
            id: tile

            width: grid.tileWidth
            height: grid.tileHeight
            box: grid.box
            onTapped: root.previewRequested(url)
            onApplyRequested: root.manager.setWallpaper(url)
            onDeleteRequested: root.manager.deleteImage(url)

            // A picture of the same second replaces its file under the same name.
            Connections {
                target: root.manager

                function onDerivedChanged() {
                    tile.recheck();
                }
            }
        }

        FontMetrics {
            id: caption

            font: Theme.caption
        }
    }
}
