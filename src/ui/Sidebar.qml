import QtQuick
import Plenaura

// The controls beside the gallery.
FocusScope {
    id: root

    required property WallpaperManager manager
    required property Windows windows

    Rectangle {
        anchors.fill: parent
        color: Theme.bar
    }
    ScrollColumn {
        id: column

        readonly property int innerWidth: width - 2 * padding

        anchors.fill: parent
        spacing: 20

        PromptGroup {
            width: column.innerWidth
            focus: true
            manager: root.manager
            windows: root.windows
        }
        OptionsGroup {
            width: column.innerWidth
            manager: root.manager
        }
        GenerateButton {
            width: column.innerWidth
            manager: root.manager
        }
        ProviderLine {
            width: column.innerWidth
            manager: root.manager
        }
        MissingKeys {
            width: column.innerWidth
            manager: root.manager
        }
        Separator {
            width: column.innerWidth
        }
        ScheduleGroup {
            width: column.innerWidth
            manager: root.manager
        }
    }
}
