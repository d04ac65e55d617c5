import QtQuick
import Plenaura

// A thin line between two areas; its owner gives it its length.
Rectangle {
    implicitWidth: 1
    implicitHeight: 1
    color: Theme.separator
}
