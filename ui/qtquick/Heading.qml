import QtQuick
import Quillon.Consent

// A heading shrinks before a word of it is divided, though not to the size of what it heads.
PlainText {
    id: heading

    property font wanted: Style.heading
    // In the wanted font.
    readonly property real longestWord: Words.longest(words, wanted)
    readonly property int least: Math.min(wanted.pixelSize, Style.leastHeadingSize)

    font: Words.resized(wanted, Math.max(least, Math.floor(wanted.pixelSize * Math.min(1, width / longestWord))))
    Accessible.role: Accessible.Heading
}
