import QtQuick
import QtQuick.Templates as T
import Plenaura

// One tab of a tab bar: a symbol and a title.
T.TabButton {
    id: root

    required property int index
    required property T.TabBar bar
    required property string symbol
    required property string title

    // Else the bar would make all its tabs equally wide, too narrow for the longest title.
    width: implicitWidth
    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    horizontalPadding: 14
    verticalPadding: 6
    focusPolicy: Qt.TabFocus
    hoverEnabled: true

    Accessible.role: Accessible.PageTab
    Accessible.name: title
    Accessible.checkable: true
    Accessible.onPressAction: bar.setCurrentIndex(index)
    Keys.onReturnPressed: bar.setCurrentIndex(index)
    Keys.onEnterPressed: bar.setCurrentIndex(index)

    contentItem: NoteLine {
        decorative: true
        symbol: root.symbol
        text: root.title
        spacing: 6
        font: Theme.body
        color: root.checked ? Theme.text : Theme.secondary
    }
    background: Rectangle {
        radius: 6
        color: root.checked ? Theme.quaternary : root.hovered ? Theme.quaternary : "transparent"
        opacity: root.checked ? 1 : 0.5

        FocusRing {
            visible: root.visualFocus
        }
    }
}
