import QtQuick
import Quillon.Consent

// A short text that shrinks rather than break inside a word, though not below the size of ordinary text.
Text {
    id: text

    property font wanted
    // In the wanted font.
    readonly property real longestWord: widest(text.text.split(/\s+/))
    readonly property real lineWidth: widest([text.text])
    // The largest size that fits, in pixels, and the one that is used.
    readonly property int fittingSize: {
        const least = Math.min(wanted.pixelSize, Style.body.pixelSize / Style.textScale, 15)
        return Math.max(least, Math.floor(wanted.pixelSize * Math.min(1, width / longestWord)))
    }
    property int size: fittingSize

    function widest(words) {
        // A width is not measured anew by itself when the font changes.
        if (metrics.font !== wanted)
            return 0
        return Math.ceil(Math.max(0, ...words.map(word => metrics.advanceWidth(word)))) + 1
    }

    textFormat: Text.PlainText
    font.family: wanted.family
    font.weight: wanted.weight
    font.pixelSize: size
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
