import QtQuick
import QtQuick.Templates as T
import Plenaura

// Text as it is, without mark-up, in the body look unless told otherwise. Unlike a bare Text it is
// there for assistive technology.
T.Label {
    color: Theme.text
    font: Theme.body
    textFormat: Text.PlainText
}
