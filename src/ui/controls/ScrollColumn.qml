import QtQuick
import QtQuick.Templates as T
import Plenaura

// A column that scrolls when it is taller than its place, and follows the keyboard focus.
Flickable {
    id: root

    default property alias content: column.data
    property alias spacing: column.spacing
    property int padding: 20
    property int verticalPadding: padding

    function reveal(item: Item) {
        const place = item.mapToItem(column, 0, 0);
        const top = column.y + place.y - verticalPadding;
        const bottom = column.y + place.y + item.height + verticalPadding;
        if (bottom - contentY > height)
            contentY = bottom - height;
        if (top < contentY)
            contentY = Math.max(0, top);
    }

    function holds(item: Item): bool {
        for (let ancestor = item; ancestor; ancestor = ancestor.parent) {
            if (ancestor === column)
                return true;
        }
        return false;
    }

    clip: true
    contentWidth: width
    contentHeight: column.height + 2 * verticalPadding
    boundsBehavior: Flickable.StopAtBounds
    // Dragging would fight with the selection of text.
    interactive: false

    T.ScrollBar.vertical: ThinScrollBar {}

    Column {
        id: column

        x: root.padding
        y: root.verticalPadding
        width: root.width - 2 * root.padding
    }
    WheelHandler {
        onWheel: event => {
            const pixels = event.pixelDelta.y !== 0 ? event.pixelDelta.y : event.angleDelta.y / 120 * 60;
            const last = Math.max(0, root.contentHeight - root.height);
            root.contentY = Math.max(0, Math.min(last, root.contentY - pixels));
        }
    }
    Connections {
        target: root.Window.window

        function onActiveFocusItemChanged() {
            const item = root.Window.window.activeFocusItem;
            if (item && root.holds(item))
                root.reveal(item);
        }
    }
}
