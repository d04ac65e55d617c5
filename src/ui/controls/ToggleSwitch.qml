import QtQuick
import QtQuick.Templates as T
import Plenaura

// A switch behind its title. `toggled` is the person's doing, with a hand or through assistive
// technology, and never comes while the switch is disabled.
T.Switch {
    id: root

    property string title

    function userToggle() {
        if (!enabled)
            return;
        toggle();
        toggled();
    }

    implicitWidth: implicitContentWidth + 12 + implicitIndicatorWidth
    implicitHeight: Math.max(implicitContentHeight, implicitIndicatorHeight)
    focusPolicy: Qt.TabFocus
    hoverEnabled: true

    Accessible.role: Accessible.CheckBox
    Accessible.name: title
    Accessible.checkable: true
    Accessible.onPressAction: userToggle()
    Accessible.onToggleAction: userToggle()
    Keys.onReturnPressed: userToggle()
    Keys.onEnterPressed: userToggle()

    contentItem: PlainLabel {
        Accessible.ignored: true
        rightPadding: root.implicitIndicatorWidth + 12
        text: root.title
        color: root.enabled ? Theme.text : Theme.tertiary
        elide: Text.ElideRight
        verticalAlignment: Text.AlignVCenter
    }

    indicator: Rectangle {
        implicitWidth: 36
        implicitHeight: 20
        x: root.width - width
        y: (root.height - height) / 2
        radius: height / 2
        color: root.checked ? Theme.prominent : Theme.track
        opacity: root.enabled ? 1 : 0.45

        Rectangle {
            x: 2 + root.visualPosition * (parent.width - width - 4)
            y: 2
            width: 16
            height: 16
            radius: 8
            color: "white"

            Behavior on x {
                enabled: !root.down
                NumberAnimation {
                    duration: 120
                    easing.type: Easing.InOutQuad
                }
            }
        }
        FocusRing {
            visible: root.visualFocus
            around: parent.radius
        }
    }
}
