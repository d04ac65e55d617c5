import QtQuick
import Plenaura

// The key of one service: a field, what can be done with it, and whether it is saved.
Item {
    id: root

    required property string label
    required property string providerId
    readonly property APIKey key: APIKey {
        providerId: root.providerId
    }

    width: parent?.width ?? 0
    implicitHeight: savedNote.visible ? savedNote.y + savedNote.height + 8 : field.y + field.height + 8

    SecureField {
        id: field

        x: 10
        y: 8
        width: save.x - 8 - x
        placeholderText: qsTr("%1 API Key").arg(root.label)
        secret: root.key.field
    }
    PushButton {
        id: save

        anchors.right: trash.visible ? trash.left : parent.right
        anchors.rightMargin: trash.visible ? 8 : 10
        anchors.verticalCenter: field.verticalCenter
        title: root.key.saved ? qsTr("Update") : qsTr("Save")
        enabled: !root.key.field.empty
        onClicked: root.key.save()
    }
    PushButton {
        id: trash

        anchors.right: parent.right
        anchors.rightMargin: 10
        anchors.verticalCenter: field.verticalCenter
        visible: root.key.saved
        destructive: true
        symbol: "trash"
        Accessible.name: qsTr("Delete %1 API key").arg(root.label)
        onClicked: root.key.remove()
        // The keyboard would stay on what is no longer there.
        onVisibleChanged: if (!visible && activeFocus) field.forceActiveFocus(Qt.OtherFocusReason)
    }
    NoteLine {
        id: savedNote

        x: 10
        anchors.top: field.bottom
        anchors.topMargin: 8
        visible: root.key.saved
        symbol: "checkmark.circle.fill"
        text: qsTr("Saved in Keychain")
        color: Theme.green
    }
}
