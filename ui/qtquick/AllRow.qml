import QtQuick
import Quillon.Consent

// Refusing all and accepting all, as near as one another.
EqualRow {
    id: row

    required property PreferenceCenterAdapter preferences
    // What comes next once all is decided here.
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
        // A screen reader hears a message that belongs to what it is at.
        Accessible.name: activeFocus ? row.preferences.banner.sentences(text, row.preferences.voiceOverText) : text
        // qmllint enable unqualified
    }
}
