import QtQuick
import Quillon.Consent

// Answers of equal prominence.
EqualRow {
    id: row

    property string hint
    signal chosen(int action)

    visible: count > 0
    delegate: ConsentButton {
        required property bannerControl modelData

        text: modelData.text
        // qmllint disable unqualified
        hint: row.hint
        width: row.cellWidth
        height: row.cellHeight
        onClicked: row.chosen(modelData.action)
        // qmllint enable unqualified
    }
}
