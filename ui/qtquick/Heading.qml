import QtQuick
import Quillon.Consent

// Shrinks to fit a long word before that is hyphenated, but stays larger than the text below it.
PlainText {
    id: heading

    property font wanted: Style.heading
    // In the preferred font.
    readonly property real longestWord: Words.longest(words, wanted)
    readonly property int least: Math.min(wanted.pixelSize, Style.leastHeadingSize)

    font: Words.resized(wanted, Math.max(least, Math.floor(wanted.pixelSize * Math.min(1, width / longestWord))))
    Accessible.role: Accessible.Heading
}
