import QtQuick
import Plenaura

// Shows which control the keyboard acts on. Lies around the item it is declared in.
Rectangle {
    property int gap: 2
    property int around: 6

    anchors.fill: parent
    anchors.margins: -gap - border.width
    radius: around + gap + border.width
    color: "transparent"
    border.width: 2
    border.color: Theme.focusRing
}
