import QtQuick
import QtQuick.Templates as T
import Plenaura

// The settings window.
T.ApplicationWindow {
    id: root

    required property AdvancedSettings advanced
    required property Windows windows

    title: qsTr("Settings")
    width: 500
    height: 340
    minimumWidth: 500
    minimumHeight: 340
    maximumWidth: 500
    maximumHeight: 340
    color: Theme.window
    font: Theme.body

    SettingsView {
        anchors.fill: parent
        focus: true
        advanced: root.advanced
    }
    Shortcut {
        sequences: root.windows.quitKeys
        onActivated: root.windows.requestQuit()
    }
    Shortcut {
        sequences: root.windows.closeKeys
        onActivated: root.close()
    }
}
