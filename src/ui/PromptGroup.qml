import QtQuick
import Plenaura

// What the person wants to see.
FocusScope {
    id: root

    required property WallpaperManager manager
    required property Windows windows

    implicitHeight: editor.y + editor.height

    PlainLabel {
        id: header

        text: qsTr("Prompt")
        font: Theme.subheadline
        color: Theme.secondary
    }
    WindowMenu {
        anchors.right: parent.right
        anchors.rightMargin: -padding
        anchors.verticalCenter: header.verticalCenter
        visible: !root.windows.trayAvailable
        windows: root.windows
    }
    TextEditor {
        id: editor

        anchors.top: header.bottom
        anchors.topMargin: 8
        width: parent.width
        focus: true
        title: qsTr("Prompt")
        onEdited: text => root.manager.prompt = text

        Component.onCompleted: show(root.manager.prompt)
    }
    Connections {
        target: root.manager

        function onPromptChanged() {
            editor.show(root.manager.prompt);
        }
    }
}
