import QtQuick
import Quillon.Consent

// Text without markup. Words longer than the line are hyphenated.
Text {
    id: view

    property string words

    text: Words.divided(words, font, width, Style.language)
    textFormat: Text.PlainText
    font: Style.body
    color: Style.colors.text
    wrapMode: Text.Wrap
    height: Pixels.up(implicitHeight, Screen.devicePixelRatio)
    horizontalAlignment: Text.AlignLeft
    Accessible.role: Accessible.StaticText
    Accessible.name: words
}
