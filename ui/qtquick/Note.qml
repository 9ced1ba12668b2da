import QtQuick
import Quillon.Consent

// A remark on a purpose, in the colours that are configured for it.
Rectangle {
    id: note

    required property RichTextAdapter content

    implicitHeight: view.implicitHeight + 24
    radius: 8
    color: Style.colors.note
    visible: content.markup !== ""

    RichTextView {
        id: view
        x: 12
        y: 12
        width: parent.width - 24
        content: note.content
        font: Style.caption
        color: Style.colors.noteText
        inkOfLinks: Style.colors.noteText
    }
}
