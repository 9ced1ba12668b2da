import QtQuick
import Quillon.Consent

// Every text of ours but those with markup. A word that is longer than the line is divided as its language has it.
Text {
    id: view

    property string words

    text: Words.divided(words, font, width, Style.language)
    textFormat: Text.PlainText
    font: Style.body
    color: Style.colors.text
    wrapMode: Text.Wrap
    horizontalAlignment: Text.AlignLeft
    Accessible.role: Accessible.StaticText
    Accessible.name: words
}
