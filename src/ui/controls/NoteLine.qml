import QtQuick
import Plenaura

// A symbol and a short text in one colour.
Item {
    id: root

    property alias symbol: symbol.name
    property alias text: label.text
    property alias font: label.font
    property alias wrapMode: label.wrapMode
    property alias label: label
    property color color: Theme.secondary
    // What assistive technology reads, if not the text as it is shown.
    property string spoken: text
    property bool decorative: false
    property int spacing: 4

    implicitWidth: symbol.width + spacing + label.implicitWidth
    implicitHeight: Math.max(symbol.height, label.height)

    Symbol {
        id: symbol

        anchors.left: parent.left
        y: Math.round((firstLine.height - height) / 2)
        width: Math.round(firstLine.height * 0.95)
        height: width
        color: root.color
    }
    FontMetrics {
        id: firstLine

        font: label.font
    }
    PlainLabel {
        id: label

        anchors.left: symbol.right
        anchors.leftMargin: root.spacing
        anchors.right: parent.right
        color: root.color
        font: Theme.caption
        Accessible.name: root.spoken
        Accessible.ignored: root.decorative
    }
}
