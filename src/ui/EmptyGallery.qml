import QtQuick
import Plenaura

// What the gallery shows before there is a picture.
Column {
    id: root

    spacing: 12

    Symbol {
        anchors.horizontalCenter: parent.horizontalCenter
        width: 56
        height: 48
        name: "photo.on.rectangle.angled"
        color: Theme.secondary
    }
    PlainLabel {
        width: root.width
        horizontalAlignment: Text.AlignHCenter
        text: qsTr("No wallpapers yet")
        font: Theme.title3
        color: Theme.secondary
        wrapMode: Text.Wrap
    }
    PlainLabel {
        width: root.width
        horizontalAlignment: Text.AlignHCenter
        text: qsTr("Generate your first wallpaper\nusing the sidebar controls.")
        font: Theme.callout
        color: Theme.tertiary
        wrapMode: Text.Wrap
    }
}
