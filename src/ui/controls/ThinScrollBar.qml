import QtQuick
import QtQuick.Templates as T
import Plenaura

// An overlay scroll bar that shows itself while it is of use.
T.ScrollBar {
    id: root

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    padding: 2
    minimumSize: 0.06
    visible: size < 1
    Accessible.ignored: true

    contentItem: Rectangle {
        implicitWidth: 7
        implicitHeight: 7
        radius: 3.5
        color: Theme.track
        opacity: root.pressed ? 0.9 : root.hovered || root.active ? 0.65 : 0.35

        Behavior on opacity {
            NumberAnimation {
                duration: 150
            }
        }
    }
}
