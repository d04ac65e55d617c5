import QtQuick
import Plenaura

// What stands on a button: an indicator of progress, a symbol, words; centred.
Item {
    id: root

    property string title
    property string symbol
    property bool busy: false
    property alias font: label.font
    property color color: Theme.buttonText

    // Not the row's own width: the label's share of it depends on the width of the button.
    readonly property real besideLabel: (busy ? spinner.width : 0) + (symbol !== "" ? picture.width : 0)
    readonly property real gap: besideLabel > 0 && title !== "" ? row.spacing : 0

    implicitWidth: besideLabel + gap + (title !== "" ? label.implicitWidth : 0)
    implicitHeight: label.implicitHeight

    Row {
        id: row

        anchors.centerIn: parent
        spacing: 4

        Spinner {
            id: spinner

            anchors.verticalCenter: parent.verticalCenter
            visible: root.busy
            color: root.color
        }
        Symbol {
            id: picture

            anchors.verticalCenter: parent.verticalCenter
            visible: root.symbol !== ""
            width: 16
            height: 16
            name: root.symbol
            color: root.color
        }
        PlainLabel {
            id: label

            Accessible.ignored: true
            anchors.verticalCenter: parent.verticalCenter
            visible: text !== ""
            // No wider than the button: a long translation takes a second line.
            width: Math.min(implicitWidth, Math.max(0, root.width - root.besideLabel - root.gap))
            wrapMode: Text.Wrap
            maximumLineCount: 2
            elide: Text.ElideRight
            horizontalAlignment: Text.AlignHCenter
            text: root.title
            color: root.color
        }
    }
}
