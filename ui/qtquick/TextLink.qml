import QtQuick
import Quillon.Consent

// A link that stands by itself.
Pressable {
    id: control

    // Room towards the link that follows.
    property real gapAfter: 0

    implicitWidth: words.lineWidth + gapAfter
    implicitHeight: Math.max(44, words.implicitHeight + 16)
    Accessible.role: Accessible.Link

    FittedText {
        id: words
        anchors.left: parent.left
        anchors.verticalCenter: parent.verticalCenter
        width: parent.width - control.gapAfter
        text: control.text
        wanted: control.font
        // As large as the links beside it.
        size: wanted.pixelSize
        font.underline: control.hovered || control.pressed
        color: Style.colors.link
        Accessible.ignored: true

        FocusRing {
            isShown: control.visualFocus
        }
    }
}
