import QtQuick
import Plenaura

// A section of a grouped form: a header, rows on a common ground, a footer.
Column {
    id: root

    default property alias rows: rowColumn.data
    property alias header: headerLabel.text
    property alias footer: footerLabel.text

    spacing: 5

    PlainLabel {
        id: headerLabel

        leftPadding: 10
        width: root.width
        font: Theme.headline
    }
    Rectangle {
        width: root.width
        height: rowColumn.height
        radius: 8
        color: Theme.group
        border.width: 1
        border.color: Theme.separator

        Column {
            id: rowColumn

            width: parent.width
        }
    }
    PlainLabel {
        id: footerLabel

        leftPadding: 10
        rightPadding: 10
        width: root.width
        visible: text !== ""
        font: Theme.caption
        color: Theme.secondary
        wrapMode: Text.Wrap
    }
}
