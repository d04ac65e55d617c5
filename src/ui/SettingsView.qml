import QtQuick
import QtQuick.Templates as T
import Plenaura

// Two tabs: the keys, and what few people change.
FocusScope {
    id: root

    required property AdvancedSettings advanced

    Rectangle {
        anchors.left: parent.left
        anchors.right: parent.right
        height: bar.height + 12
        color: Theme.bar
    }
    T.TabBar {
        id: bar

        anchors.horizontalCenter: parent.horizontalCenter
        y: 6
        width: contentWidth
        height: contentHeight
        spacing: 6
        contentWidth: keysTab.implicitWidth + spacing + advancedTab.implicitWidth
        contentHeight: keysTab.implicitHeight
        focus: true

        Keys.onLeftPressed: decrementCurrentIndex()
        Keys.onRightPressed: incrementCurrentIndex()

        contentItem: ListView {
            focus: true
            model: bar.contentModel
            currentIndex: bar.currentIndex
            orientation: ListView.Horizontal
            spacing: bar.spacing
            interactive: false
        }

        Tab {
            id: keysTab

            index: 0
            bar: bar
            symbol: "key.fill"
            title: qsTr("API Keys")
        }
        Tab {
            id: advancedTab

            index: 1
            bar: bar
            symbol: "gearshape"
            title: qsTr("Advanced")
        }
    }
    Separator {
        id: line

        y: bar.height + 12
        width: parent.width
    }
    APIKeysTab {
        anchors.top: line.bottom
        anchors.bottom: parent.bottom
        width: parent.width
        visible: bar.currentIndex === 0
    }
    AdvancedTab {
        anchors.top: line.bottom
        anchors.bottom: parent.bottom
        width: parent.width
        visible: bar.currentIndex === 1
        advanced: root.advanced
    }
}
