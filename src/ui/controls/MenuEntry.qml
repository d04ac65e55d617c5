import QtQuick
import QtQuick.Templates as T
import Plenaura

// One line of a menu.
T.MenuItem {
    id: root

    property string title

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    padding: 6
    leftPadding: 12
    rightPadding: 12

    Accessible.role: Accessible.MenuItem
    Accessible.name: title
    Accessible.onPressAction: if (enabled) triggered()

    contentItem: PlainLabel {
        Accessible.ignored: true
        text: root.title
        color: root.highlighted ? Theme.selectedText : Theme.text
    }
    background: Rectangle {
        radius: 4
        color: root.highlighted ? Theme.selection : "transparent"
    }
}
