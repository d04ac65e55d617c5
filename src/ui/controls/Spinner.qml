import QtQuick
import Plenaura

// A small progress indicator; turns only while it is seen.
Symbol {
    id: root

    implicitWidth: 16
    implicitHeight: 16
    name: "spinner"

    RotationAnimator on rotation {
        from: 0
        to: 360
        duration: 900
        loops: Animation.Infinite
        running: root.visible
    }
}
