import QtQuick
import Quillon.Consent

// A link that stands by itself.
Pressable {
    id: control

    // Room towards the link that follows.
    property real gapAfter: 0

    implicitWidth: Math.ceil(words.implicitWidth) + gapAfter
    implicitHeight: Math.max(44, words.implicitHeight + 16)
    Accessible.role: Accessible.Link

    Text {
        id: words
        anchors.left: parent.left
        anchors.verticalCenter: parent.verticalCenter
        width: parent.width - control.gapAfter
        text: control.text
        textFormat: Text.PlainText
        font.family: control.font.family
        font.pixelSize: control.font.pixelSize
        font.weight: control.font.weight
        font.underline: control.hovered || control.pressed
        color: Style.colors.link
        horizontalAlignment: Text.AlignLeft
        wrapMode: Text.Wrap
        Accessible.ignored: true

        FocusRing {
            isShown: control.visualFocus
        }
    }
}
