import QtQuick
import QtQuick.Templates as T
import Plenaura

// A field for a secret. It holds and shows nothing but bullets: the secret is edited in C++ and
// never becomes a text that could be copied, read aloud or looked up. What people and assistive
// technology change is taken over bullet by bullet.
T.TextField {
    id: root

    required property SecretText secret

    function edit(event: KeyEvent): bool {
        const place = secret.edit(event.key, event.modifiers, event.text, selectionStart, selectionEnd, cursorPosition);
        if (place < 0)
            return false;
        deselect();
        cursorPosition = place;
        return true;
    }

    implicitWidth: 160
    implicitHeight: contentHeight + topPadding + bottomPadding
    padding: 6
    leftPadding: 8
    rightPadding: 8
    echoMode: TextInput.Password
    passwordCharacter: "\u2022"
    inputMethodHints: Qt.ImhHiddenText | Qt.ImhSensitiveData | Qt.ImhNoPredictiveText | Qt.ImhNoAutoUppercase
    selectByMouse: true
    color: Theme.text
    font: Theme.body
    placeholderTextColor: Theme.tertiary
    selectionColor: Theme.selection
    selectedTextColor: Theme.selectedText
    verticalAlignment: TextInput.AlignVCenter

    Accessible.role: Accessible.EditableText
    Keys.onPressed: event => event.accepted = edit(event)

    Component.onCompleted: text = secret.masked
    onTextChanged: {
        if (text !== secret.masked) {
            secret.takeEdit(text);
            text = secret.masked;
        }
    }

    Connections {
        target: root.secret

        function onChanged() {
            root.text = root.secret.masked;
        }
    }
    PlainLabel {
        Accessible.ignored: true
        x: root.leftPadding
        y: root.topPadding
        width: root.width - root.leftPadding - root.rightPadding
        visible: root.length === 0
        text: root.placeholderText
        color: root.placeholderTextColor
        elide: Text.ElideRight
    }
    // Else the field would put the selection of the desktop into itself, in clear.
    MouseArea {
        anchors.fill: parent
        acceptedButtons: Qt.MiddleButton
        onClicked: {
            root.forceActiveFocus(Qt.MouseFocusReason);
            root.cursorPosition = root.secret.pasteSelection(root.cursorPosition);
        }
    }

    background: Rectangle {
        radius: 5
        color: Theme.control
        border.width: 1
        border.color: Theme.outline

        FocusRing {
            visible: root.activeFocus
            around: 5
            gap: 0
        }
    }
}
