import QtQuick
import QtQuick.Templates as T
import Plenaura

// A field of several lines that grows with its text between two heights and then scrolls.
FocusScope {
    id: root

    property string title
    readonly property alias text: area.text
    property int minimumHeight: 80
    property int maximumHeight: 120

    property bool showing: false

    // The person changed the text, by hand or through assistive technology.
    signal edited(text: string)

    // Shows a text that came from elsewhere.
    function show(text: string) {
        if (text === area.text)
            return;
        showing = true;
        area.text = text;
        area.cursorPosition = area.length;
        showing = false;
    }

    implicitHeight: Math.max(minimumHeight, Math.min(maximumHeight, Math.ceil(area.contentHeight) + 16))

    Rectangle {
        anchors.fill: parent
        radius: 8
        color: Theme.control
    }
    Flickable {
        id: flickable

        anchors.fill: parent
        clip: true
        boundsBehavior: Flickable.StopAtBounds

        T.ScrollBar.vertical: ThinScrollBar {}
        T.TextArea.flickable: T.TextArea {
            id: area

            focus: true
            padding: 8
            color: Theme.text
            font: Theme.body
            selectionColor: Theme.selection
            selectedTextColor: Theme.selectedText
            selectByMouse: true
            textFormat: TextEdit.PlainText
            wrapMode: TextEdit.Wrap

            onTextChanged: if (!root.showing) root.edited(text)

            Accessible.name: root.title
            // A tab character is of no use here, and the keyboard must find its way out.
            Keys.onTabPressed: nextItemInFocusChain(true).forceActiveFocus(Qt.TabFocusReason)
            Keys.onBacktabPressed: nextItemInFocusChain(false).forceActiveFocus(Qt.BacktabFocusReason)
        }
    }
    Rectangle {
        anchors.fill: parent
        radius: 8
        color: "transparent"
        border.width: 1
        border.color: Theme.separator
    }
    FocusRing {
        visible: area.activeFocus
        around: 8
        gap: 0
    }
}
