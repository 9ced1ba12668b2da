import QtQuick
import Quillon.Consent

// A permission with its live status.
Column {
    id: row

    required property PermissionAdapter permission
    required property PreferenceCenterAdapter model
    required property int index

    spacing: Style.metrics.smallGap

    PlainText {
        width: parent.width
        topPadding: row.index > 0 ? Style.metrics.gap : 0
        words: row.permission.heading
        font: Style.label
        color: Style.colors.quietText
        visible: words !== ""
        Accessible.role: Accessible.Heading
    }
    Card {
        id: card
        width: parent.width
        endsInControl: row.permission.canUpdate
        Accessible.name: row.permission.summary

        Flow {
            width: parent.width
            spacing: Style.metrics.smallGap

            PlainText {
                // The state is at the end of the line or, if it does not fit, below it.
                readonly property real roomBeside: parent.width - badge.width - Style.metrics.smallGap

                width: Words.lineOf(words, font) <= roomBeside ? roomBeside : parent.width
                words: row.permission.name
                font: Style.subHeading
                Accessible.role: Accessible.Heading
            }
            Row {
                id: badge
                spacing: Style.metrics.hairGap

                Icon {
                    id: mark
                    width: Style.metrics.smallIcon
                    height: width
                    anchors.verticalCenter: parent.verticalCenter
                    shape: row.permission.isGranted ? Icon.Check : Icon.Cross
                    color: Style.colors.quietText
                }
                PlainText {
                    anchors.verticalCenter: parent.verticalCenter
                    width: Math.min(Words.lineOf(words, font), card.innerWidth - mark.width - parent.spacing)
                    words: row.permission.state
                    font: Style.caption
                    color: Style.colors.quietText
                }
            }
        }
        RichTextView {
            width: parent.width
            content: row.permission.description
        }
        TextLink {
            anchors.left: parent.left
            text: row.model.updateLabel
            hint: row.model.banner.activationHint
            width: Math.min(implicitWidth, parent.width)
            visible: row.permission.canUpdate
            onClicked: row.model.tapPermission(row.index)
            Accessible.name: row.permission.updateName
        }
    }
}
