import QtQuick
import Quillon.Consent

// A name and its value, side by side or, if long, stacked.
Item {
    id: row

    required property sdkFact fact

    readonly property real lineOfLabel: Words.lineOf(fact.label, label.font)
    readonly property bool isRow: lineOfLabel + Words.lineOf(fact.value, value.font) + Style.metrics.largeGap <= width

    implicitHeight: isRow ? Math.max(label.height, value.height) : label.height + value.height
    Accessible.role: Accessible.StaticText
    Accessible.name: fact.sentence

    PlainText {
        id: label
        anchors.left: parent.left
        width: row.isRow ? row.lineOfLabel : row.width
        words: row.fact.label
        font: Style.caption
        color: Style.colors.quietText
        Accessible.ignored: true
    }
    PlainText {
        id: value
        anchors.right: parent.right
        y: row.isRow ? 0 : label.height
        width: row.isRow ? row.width - row.lineOfLabel - Style.metrics.largeGap : row.width
        words: row.fact.value
        font: Style.caption
        horizontalAlignment: row.isRow ? Text.AlignRight : Text.AlignLeft
        Accessible.ignored: true
    }
}
