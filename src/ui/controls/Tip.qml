import QtQuick
import QtQuick.Templates as T
import Plenaura

// A tool tip that wraps long texts.
T.ToolTip {
    id: root

    property int mostWidth: 420

    x: 0
    y: -implicitHeight - 6
    implicitWidth: Math.min(mostWidth, metrics.advanceWidth + 4 + leftPadding + rightPadding)
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    margins: 6
    padding: 8
    delay: 500
    closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutsideParent

    TextMetrics {
        id: metrics

        text: root.text
        font: Theme.caption
    }

    contentItem: PlainLabel {
        text: root.text
        font: Theme.caption
        wrapMode: Text.Wrap
    }
    background: Rectangle {
        radius: 6
        color: Theme.bar
        border.width: 1
        border.color: Theme.outline
    }
}
