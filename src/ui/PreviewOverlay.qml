import QtQuick
import Plenaura

// One picture over the whole window. Shown only while `source` names a picture that decodes.
FocusScope {
    id: root

    property alias source: picture.source
    readonly property bool shown: picture.status === Picture.Ready
    property Item focusBefore

    signal closeRequested
    signal applyRequested

    // Shows the file as it is now, or nothing if that is no picture any more.
    function recheck() {
        picture.recheck();
    }

    function coarse(length: real): real {
        return Math.ceil(length / 160) * 160 * Screen.devicePixelRatio;
    }

    opacity: shown ? 1 : 0
    visible: opacity > 0
    onShownChanged: {
        if (shown) {
            focusBefore = Window.window.activeFocusItem;
            applyButton.forceActiveFocus(Qt.OtherFocusReason);
        } else {
            focusBefore?.forceActiveFocus(Qt.OtherFocusReason);
            focusBefore = null;
        }
    }

    Keys.onEscapePressed: closeRequested()

    Behavior on opacity {
        NumberAnimation {
            duration: 200
            easing.type: Easing.InOutQuad
        }
    }

    Rectangle {
        anchors.fill: parent
        color: "black"
        opacity: 0.85
    }
    Picture {
        id: picture

        anchors.fill: parent
        anchors.margins: 32
        fit: true
        box: Qt.size(root.coarse(width), root.coarse(height))
    }
    MouseArea {
        anchors.fill: parent
        hoverEnabled: true
        onClicked: root.closeRequested()
        onWheel: wheel => wheel.accepted = true
    }
    SymbolButton {
        id: closeIcon

        anchors.right: parent.right
        anchors.top: parent.top
        padding: 16
        symbol: "xmark.circle.fill"
        symbolSize: 22
        color: Qt.rgba(1, 1, 1, 0.7)
        title: qsTr("Close preview")
        KeyNavigation.tab: applyButton
        KeyNavigation.backtab: closeButton
        onClicked: root.closeRequested()
    }
    Row {
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 24
        spacing: 12

        PushButton {
            id: applyButton

            size: PushButton.Large
            prominent: true
            title: qsTr("Set as Wallpaper")
            KeyNavigation.tab: closeButton
            KeyNavigation.backtab: closeIcon
            onClicked: root.applyRequested()
        }
        PushButton {
            id: closeButton

            size: PushButton.Large
            title: qsTr("Close")
            KeyNavigation.tab: closeIcon
            KeyNavigation.backtab: applyButton
            onClicked: root.closeRequested()
        }
    }
}
