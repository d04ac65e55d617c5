import QtQuick
import QtQuick.Templates as T
import Plenaura

// A push button. Its words are in `title`, because `text` would take an "&" for a mnemonic.
T.Button {
    id: root

    enum Size { Small, Regular, Large }

    property string title
    property string symbol
    property int size: PushButton.Regular
    property bool prominent: false
    property bool destructive: false
    property bool busy: false
    property color foreground: prominent ? Theme.prominentText : destructive ? Theme.red : Theme.buttonText

    implicitWidth: Math.max(implicitContentWidth + leftPadding + rightPadding, implicitHeight)
    implicitHeight: Math.max(implicitContentHeight + topPadding + bottomPadding, 24)
    verticalPadding: size === PushButton.Small ? 4 : size === PushButton.Large ? 9 : 6
    horizontalPadding: title === "" ? verticalPadding : size === PushButton.Large ? 18 : 12
    focusPolicy: Qt.TabFocus
    hoverEnabled: true
    font: size === PushButton.Small ? Theme.callout : Theme.body

    Accessible.role: Accessible.Button
    Accessible.name: title
    Accessible.onPressAction: if (enabled) clicked()
    Keys.onReturnPressed: if (enabled) clicked()
    Keys.onEnterPressed: if (enabled) clicked()

    contentItem: ButtonFace {
        title: root.title
        symbol: root.symbol
        busy: root.busy
        font: root.font
        color: root.enabled ? root.foreground : Theme.tertiary
    }

    background: Rectangle {
        radius: 6
        color: {
            if (!root.enabled)
                return root.prominent ? Theme.quaternary : Theme.button;
            if (root.prominent)
                return root.down ? Theme.prominentPressed : root.hovered ? Theme.prominentHovered : Theme.prominent;
            return root.down ? Theme.buttonPressed : root.hovered ? Theme.buttonHovered : Theme.button;
        }
        border.width: root.prominent && root.enabled ? 0 : 1
        border.color: root.enabled ? Theme.outline : Theme.separator

        FocusRing {
            visible: root.visualFocus
        }
    }
}
