pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Plenaura

// A pop-up picker over a list of texts. `activated` is the person's choice.
T.ComboBox {
    id: root

    property string title

    function choose(index: int) {
        popup.close();
        if (!enabled)
            return;
        currentIndex = index;
        activated(index);
    }

    implicitWidth: Math.max(110, implicitContentWidth + leftPadding + rightPadding)
    implicitContentWidthPolicy: T.ComboBox.WidestText
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    padding: 5
    leftPadding: 10
    rightPadding: 26
    focusPolicy: Qt.TabFocus
    hoverEnabled: true
    font: Theme.body

    Accessible.name: title
    Accessible.focusable: enabled
    Accessible.onPressAction: if (enabled) popup.open()
    Keys.onReturnPressed: popup.open()
    Keys.onEnterPressed: popup.open()

    contentItem: T.TextField {
        Accessible.name: root.displayText
        Accessible.readOnly: true
        implicitHeight: contentHeight
        enabled: false
        readOnly: true
        text: shown.elidedText
        color: root.enabled ? Theme.buttonText : Theme.tertiary
        font: root.font
        verticalAlignment: TextInput.AlignVCenter
    }

    TextMetrics {
        id: shown

        text: root.displayText
        font: root.font
        elide: Text.ElideRight
        elideWidth: root.availableWidth
    }

    indicator: Symbol {
        x: root.width - width - 8
        y: (root.height - height) / 2
        width: 12
        height: 12
        name: "chevrons"
        color: root.enabled ? Theme.secondary : Theme.tertiary
    }

    background: Rectangle {
        radius: 6
        color: root.down ? Theme.buttonPressed : root.hovered ? Theme.buttonHovered : Theme.button
        border.width: 1
        border.color: Theme.outline

        FocusRing {
            visible: root.visualFocus
        }
    }

    delegate: T.ItemDelegate {
        id: option

        required property int index
        required property string modelData

        width: ListView.view.width
        implicitHeight: implicitContentHeight + topPadding + bottomPadding
        padding: 5
        leftPadding: 26
        rightPadding: 10
        hoverEnabled: true
        highlighted: root.highlightedIndex === index

        Accessible.role: Accessible.ListItem
        Accessible.name: modelData
        Accessible.selectable: true
        Accessible.selected: root.currentIndex === index
        Accessible.onPressAction: root.choose(index)

        contentItem: PlainLabel {
            Accessible.ignored: true
            text: option.modelData
            font: root.font
            color: option.highlighted ? Theme.selectedText : Theme.text
            elide: Text.ElideRight
        }
        background: Rectangle {
            radius: 4
            color: option.highlighted ? Theme.selection : "transparent"

            Symbol {
                visible: root.currentIndex === option.index
                anchors.verticalCenter: parent.verticalCenter
                x: 7
                width: 12
                height: 12
                name: "checkmark"
                color: option.highlighted ? Theme.selectedText : Theme.text
            }
        }
    }

    popup: T.Popup {
        y: root.height + 2
        width: Math.max(root.width, root.implicitContentWidth + root.leftPadding + root.rightPadding + leftPadding + rightPadding)
        height: Math.min(contentItem.implicitHeight + 8, (root.Window.window?.height ?? 400) - 16)
        margins: 8
        padding: 4

        contentItem: ListView {
            clip: true
            implicitHeight: contentHeight
            model: root.delegateModel
            currentIndex: root.highlightedIndex
            highlightMoveDuration: 0
            boundsBehavior: Flickable.StopAtBounds

            T.ScrollBar.vertical: ThinScrollBar {}
        }
        background: Rectangle {
            radius: 8
            color: Theme.window
            border.width: 1
            border.color: Theme.outline
        }
    }
}
