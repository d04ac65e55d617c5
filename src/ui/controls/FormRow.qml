import QtQuick
import Plenaura

// One row of a form section: a title before its control.
Item {
    id: root

    default property alias control: place.data
    property alias title: label.text
    property bool first: false

    width: parent?.width ?? 0
    implicitHeight: Math.max(label.implicitHeight, place.height) + 14

    Separator {
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.leftMargin: 10
        anchors.rightMargin: 10
        visible: !root.first
    }
    PlainLabel {
        id: label

        anchors.left: parent.left
        anchors.leftMargin: 10
        anchors.right: place.left
        anchors.rightMargin: 8
        anchors.verticalCenter: parent.verticalCenter
        elide: Text.ElideRight
    }
    Item {
        id: place

        anchors.right: parent.right
        anchors.rightMargin: 10
        anchors.verticalCenter: parent.verticalCenter
        width: childrenRect.width
        height: childrenRect.height
    }
}
