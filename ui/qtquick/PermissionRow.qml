import QtQuick
import Quillon.Consent

// A permission with its live status.
Column {
    id: row

    required property var permission
    required property PreferenceCenterAdapter model
    required property int index
    // Whether it is the first of its group.
    property bool beginsGroup: false

    spacing: 8

    Text {
        width: parent.width
        topPadding: row.index > 0 ? 12 : 0
        text: row.permission.group
        textFormat: Text.PlainText
        font: Style.label
        color: Style.colors.quietText
        wrapMode: Text.Wrap
        horizontalAlignment: Text.AlignLeft
        visible: row.beginsGroup && text !== ""
        Accessible.role: Accessible.Heading
        Accessible.name: text
    }
    Rectangle {
        width: parent.width
        // The last control has room of its own.
        implicitHeight: column.height + (row.permission.canUpdate ? 20 : 32)
        radius: 16
        color: Style.colors.card
        border.width: 1
        border.color: Style.colors.hairline
        Accessible.role: Accessible.Grouping
        Accessible.name: row.permission.name + ", " + status.text

        Column {
            id: column
            x: 16
            y: 16
            width: parent.width - 32
            spacing: 8

            Flow {
                width: parent.width
                spacing: 8

                Text {
                    width: Math.max(Math.min(implicitWidth, parent.width), parent.width - badge.width - 8 > implicitWidth ? parent.width - badge.width - 8 : 0)
                    text: row.permission.name
                    textFormat: Text.PlainText
                    font: Style.subHeading
                    color: Style.colors.text
                    wrapMode: Text.Wrap
                    horizontalAlignment: Text.AlignLeft
                }
                Row {
                    id: badge
                    spacing: 4

                    Icon {
                        width: 16 * Style.textScale
                        height: width
                        anchors.verticalCenter: parent.verticalCenter
                        shape: row.permission.isGranted ? Icon.Check : Icon.Cross
                        color: Style.colors.quietText
                    }
                    Text {
                        id: status
                        anchors.verticalCenter: parent.verticalCenter
                        text: row.permission.isGranted ? row.model.allowedLabel : row.model.notAllowedLabel
                        textFormat: Text.PlainText
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
                width: Math.min(implicitWidth, parent.width)
                visible: row.permission.canUpdate
                onClicked: row.model.tapPermission(row.index)
                Accessible.name: text + ", " + row.permission.name
                Accessible.description: row.model.banner.activationHint
            }
        }
    }
}
