import QtQuick
import Plenaura

// How the last run or setting went, on one line.
Rectangle {
    id: root

    required property WallpaperManager manager
    readonly property color tint: manager.isError ? Theme.red : Theme.green

    // Screen readers read a notification out when it appears, and are deaf to what becomes of its
    // text.
    function announce() {
        notification.visible = false;
        notification.visible = manager.status !== "";
    }

    visible: manager.status !== ""
    implicitHeight: line.height + 16
    color: Theme.bar
    Accessible.role: Accessible.StatusBar
    Component.onCompleted: announce()

    Item {
        id: notification

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.leftMargin: 24
        anchors.rightMargin: 24
        anchors.topMargin: 8
        height: line.height
        visible: false
        Accessible.role: Accessible.Notification

        NoteLine {
            id: line

            width: parent.width
            spacing: 6
            symbol: root.manager.isError ? "exclamationmark.triangle.fill" : "checkmark.circle.fill"
            color: root.tint
            // Texts of the services may hold line breaks.
            text: root.manager.status.replace(/\s+/g, " ")
            label.maximumLineCount: 1
            label.elide: Text.ElideRight
            spoken: root.manager.status
        }
    }
    Connections {
        target: root.manager

        function onStatusChanged() {
            root.announce();
        }
    }
    HoverHandler {
        id: pointer
    }
    Tip {
        visible: pointer.hovered && line.label.truncated
        mostWidth: root.width - 12
        text: root.manager.status
    }
}
