import QtQuick
import Quillon.Consent

// Answers of equal weight: side by side when all fit, else one below the other, always of the same size.
Grid {
    id: row

    // Each with a text and an action.
    property var answers: []
    property string hint
    signal chosen(int action)

    readonly property int gap: 12
    // Of one of them side by side.
    readonly property real share: (width - gap * (answers.length - 1)) / Math.max(1, answers.length)
    readonly property bool isRow: made.every(button => button.implicitWidth <= share)
    // A long word in one of them makes the text of all smaller.
    readonly property int textSize: Math.min(...made.map(button => button.fittingTextSize))
    readonly property real tallest: Math.max(0, ...made.map(button => button.implicitHeight))
    property var made: []

    columns: isRow ? Math.max(1, answers.length) : 1
    columnSpacing: gap
    rowSpacing: 8

    Repeater {
        id: buttons

        model: row.answers
        onItemAdded: (index, item) => row.made = row.made.concat(item)
        onItemRemoved: (index, item) => row.made = row.made.filter(other => other !== item)

        ConsentButton {
            required property var modelData

            text: modelData.text
            hint: row.hint
            width: row.isRow ? row.share : row.width
            height: row.tallest
            textSize: row.textSize
            onClicked: row.chosen(modelData.action)
        }
    }
}
