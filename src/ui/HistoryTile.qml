import QtQuick
import Plenaura

// One wallpaper of the gallery.
FocusScope {
    id: root

    required property int index
    required property url url
    required property string fileName
    required property string timestamp
    property alias box: picture.box
    readonly property bool hovering: pointer.hovered
    readonly property bool current: GridView.isCurrentItem

    signal tapped
    signal applyRequested
    signal deleteRequested

    // Shows the file as it is now.
    function recheck() {
        picture.recheck();
    }

    activeFocusOnTab: current || activeFocus

    Accessible.role: Accessible.ListItem
    Accessible.name: fileName
    Accessible.description: timestamp
    Accessible.focusable: true
    Accessible.onPressAction: tapped()
    Keys.onReturnPressed: tapped()
    Keys.onEnterPressed: tapped()
    Keys.onSpacePressed: tapped()

    HoverHandler {
        id: pointer
    }
    Item {
        id: area

        width: parent.width
        height: 130
        clip: true

        Rectangle {
            anchors.fill: parent
            radius: 10
            color: Theme.quaternary
            visible: picture.status !== Picture.Ready
        }
        Picture {
            id: picture

            anchors.fill: parent
            source: root.url
        }
        MouseArea {
            anchors.fill: parent
            onClicked: root.tapped()
        }
        Rectangle {
            id: bar

            anchors.left: parent.left
            anchors.right: parent.right
            anchors.bottom: parent.bottom
            height: buttons.height + 16
            color: Theme.ultraThin
            opacity: root.hovering || root.activeFocus ? 1 : 0
            // At once, not with the first step of fading in: Tab goes on to the buttons.
            visible: root.hovering || root.activeFocus || opacity > 0

            Behavior on opacity {
                NumberAnimation {
                    duration: 150
                    easing.type: Easing.InOutQuad
                }
            }

            Row {
                id: buttons

                anchors.centerIn: parent
                spacing: 8

                PushButton {
                    size: PushButton.Small
                    prominent: true
                    title: qsTr("Apply")
                    focusPolicy: root.current || activeFocus ? Qt.TabFocus : Qt.NoFocus
                    onClicked: root.applyRequested()
                    // Back to the tile, which is the scope of its buttons and would be passed over.
                    Keys.onBacktabPressed: focus = false
                }
                PushButton {
                    size: PushButton.Small
                    destructive: true
                    symbol: "trash"
                    Accessible.name: qsTr("Delete")
                    focusPolicy: root.current || activeFocus ? Qt.TabFocus : Qt.NoFocus
                    onClicked: root.deleteRequested()
                }
            }
        }
    }
    // Rounds the corners of all that lies in the area: a frame in the colour of the ground whose
    // inner edge has the wanted radius.
    Rectangle {
        anchors.fill: area
        anchors.margins: -border.width
        radius: 10 + border.width
        color: "transparent"
        border.width: 5
        border.color: Theme.window
    }
    FocusRing {
        anchors.fill: area
        visible: root.activeFocus
        around: 10
    }
    PlainLabel {
        anchors.top: area.bottom
        anchors.topMargin: 6
        width: parent.width
        text: root.timestamp
        font: Theme.caption
        color: Theme.secondary
        elide: Text.ElideRight
    }
}
