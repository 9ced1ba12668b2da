import QtQuick
import Quillon.Consent

// A short text that shrinks rather than break inside a word, though not below the size of ordinary text.
Text {
    id: text

    property font wanted
    readonly property real longestWord: {
        // A width is not measured anew by itself when the font changes.
        if (metrics.font !== wanted)
            return 0
        const widths = text.text.split(/\s+/).map(word => metrics.advanceWidth(word))
        return Math.ceil(Math.max(0, ...widths)) + 1
    }

    textFormat: Text.PlainText
    font.family: wanted.family
    font.weight: wanted.weight
    font.pixelSize: {
        const least = Math.min(wanted.pixelSize, Style.body.pixelSize / Style.textScale)
        return Math.max(least, Math.floor(wanted.pixelSize * Math.min(1, width / longestWord)))
    }
    color: Style.colors.text
    wrapMode: Text.Wrap
    horizontalAlignment: Text.AlignLeft
    Accessible.role: Accessible.Heading
    Accessible.name: text.text

    FontMetrics {
        id: metrics
        font: text.wanted
    }
}
