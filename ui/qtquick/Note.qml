import QtQuick
import Quillon.Consent

// A remark on a purpose, in its configured colours.
Rectangle {
    id: note

    required property RichTextAdapter content

    implicitHeight: view.height + 2 * Style.metrics.gap
    radius: Style.metrics.smallRadius
    color: Style.colors.note
    visible: content.markup !== ""

    RichTextView {
        id: view
        x: Style.metrics.gap
        y: Style.metrics.gap
        width: parent.width - 2 * Style.metrics.gap
        content: note.content
        font: Style.caption
        color: Style.colors.noteText
        inkOfLinks: Style.colors.noteText
    }
}
