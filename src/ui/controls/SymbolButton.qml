import QtQuick
import QtQuick.Templates as T
import Plenaura

// A borderless button that is only a symbol.
T.Button {
    id: root

    property string symbol
    property string title
    property color color: Theme.secondary
    property int symbolSize: 20

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    focusPolicy: Qt.TabFocus
    hoverEnabled: true

    Accessible.role: Accessible.Button
    Accessible.name: title
    Accessible.onPressAction: if (enabled) clicked()
    Keys.onReturnPressed: if (enabled) clicked()
    Keys.onEnterPressed: if (enabled) clicked()

    contentItem: Item {
        implicitWidth: root.symbolSize
        implicitHeight: root.symbolSize

        Symbol {
            anchors.fill: parent
            name: root.symbol
            color: root.color
            opacity: root.down ? 0.6 : root.hovered ? 0.85 : 1
        }
        FocusRing {
            visible: root.visualFocus
            around: root.symbolSize / 2
            border.color: root.color
        }
    }
}
