import QtQuick
import Quillon.Consent

// A stand-alone link.
Pressable {
    id: control

    // Space before the following link.
    property real gapAfter: 0

    implicitWidth: Pixels.up(Words.lineOf(text, font) + gapAfter, Screen.devicePixelRatio)
    implicitHeight: Math.max(Style.metrics.target, words.height + Style.metrics.largeGap)
    Accessible.role: Accessible.Link

    PlainText {
        id: words
        anchors.left: parent.left
        y: Pixels.down((parent.height - height) / 2, Screen.devicePixelRatio)
        width: parent.width - control.gapAfter
        words: control.text
        font: Words.underlined(control.font, control.hovered || control.pressed)
        color: Style.colors.link
        Accessible.ignored: true

        FocusRing {
            isShown: control.visualFocus
        }
    }
}
