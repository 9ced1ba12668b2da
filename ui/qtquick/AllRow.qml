import QtQuick
import Quillon.Consent

// The buttons "refuse all" and "accept all", equally prominent.
EqualRow {
    id: row

    required property PreferenceCenterAdapter preferences
    // The Tab key's next item after one of the buttons has been used.
    property Item following: null
    property bool isUsed: false

    model: [false, true]
    delegate: ConsentButton {
        required property bool modelData

        isQuiet: true
        // qmllint disable unqualified
        text: modelData ? row.preferences.selectAllLabel : row.preferences.unselectAllLabel
        hint: row.preferences.banner.activationHint
        following: row.isUsed ? row.following : null
        width: row.cellWidth
        height: row.cellHeight
        onClicked: {
            row.isUsed = true
            row.preferences.setAll(modelData)
        }
        onActiveFocusChanged: if (!activeFocus) row.isUsed = false
        // A screen reader announces a message only if it belongs to the focused item.
        Accessible.name: activeFocus ? row.preferences.banner.sentences(text, row.preferences.voiceOverText) : text
        // qmllint enable unqualified
    }
}
