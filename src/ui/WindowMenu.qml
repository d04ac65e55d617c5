import QtQuick
import QtQuick.Templates as T
import Plenaura

// What the tray menu offers and the window does not, for desktops without a tray.
SymbolButton {
    id: root

    required property Windows windows

    symbol: "gearshape"
    symbolSize: 16
    padding: 6
    title: qsTr("Menu")
    onClicked: menu.open()

    T.Menu {
        id: menu

        x: root.width - root.rightPadding - width
        y: root.height
        implicitWidth: Math.max(150, settingsEntry.implicitWidth + leftPadding + rightPadding, quitEntry.implicitWidth + leftPadding + rightPadding)
        implicitHeight: contentHeight + topPadding + bottomPadding
        padding: 4

        contentItem: ListView {
            implicitHeight: contentHeight
            model: menu.contentModel
            currentIndex: menu.currentIndex
            interactive: false
        }
        background: Rectangle {
            radius: 8
            color: Theme.window
            border.width: 1
            border.color: Theme.outline
        }

        MenuEntry {
            id: settingsEntry

            title: qsTr("Settings...")
            onTriggered: root.windows.showSettings()
        }
        MenuEntry {
            id: quitEntry

            title: qsTr("Quit")
            onTriggered: root.windows.reallyQuitRequested()
        }
    }
}
