import QtQuick
import QtQuick.Templates as T
import Plenaura

// The main window.
T.ApplicationWindow {
    id: root

    required property WallpaperManager manager
    required property Windows windows

    title: "Plenaura"
    width: 960
    height: 640
    minimumWidth: 760
    minimumHeight: 480
    color: Theme.window
    font: Theme.body

    // Keys and overrides are written behind the manager's back.
    onActiveChanged: {
        if (active)
            manager.refreshDerived();
    }

    ContentView {
        anchors.fill: parent
        focus: true
        manager: root.manager
        windows: root.windows
    }
    Shortcut {
        sequences: root.windows.settingsKeys
        onActivated: root.windows.showSettings()
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
