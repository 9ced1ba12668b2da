import QtQuick
import Quillon.Consent

// A component that a purpose covers, with what is known of it.
Item {
    id: card

    required property var sdk

    implicitHeight: column.height

    Picture {
        id: logo
        anchors.left: parent.left
        width: 32
        height: 32
        source: card.sdk.logo
        visible: card.sdk.logo.exists
        Accessible.ignored: true
    }
    Column {
        id: column
        anchors.left: parent.left
        anchors.leftMargin: card.sdk.logo.exists ? 44 : 0
        anchors.right: parent.right
        spacing: 4

        Text {
            width: parent.width
            text: card.sdk.name
            textFormat: Text.PlainText
            font: Style.label
            color: Style.colors.text
            wrapMode: Text.Wrap
            horizontalAlignment: Text.AlignLeft
            Accessible.role: Accessible.Heading
            Accessible.name: text
        }
        RichTextView {
            width: parent.width
            content: card.sdk.description
            font: Style.caption
            color: Style.colors.text
        }
        Item { width: 1; height: 4 }
        Repeater {
            model: card.sdk.facts

            Item {
                id: fact

                required property var modelData
                // One below the other where they are long.
                readonly property bool isRow: label.implicitWidth + value.implicitWidth + 16 <= width

                width: column.width
                implicitHeight: isRow ? Math.max(label.implicitHeight, value.implicitHeight) : label.implicitHeight + value.implicitHeight
                Accessible.role: Accessible.StaticText
                Accessible.name: modelData.label + ": " + modelData.value

                Text {
                    id: label
                    anchors.left: parent.left
                    text: fact.modelData.label
                    textFormat: Text.PlainText
                    font: Style.caption
                    color: Style.colors.quietText
                    width: Math.min(implicitWidth, parent.width)
                    wrapMode: Text.Wrap
                    Accessible.ignored: true
                }
                Text {
                    id: value
                    anchors.right: parent.right
                    y: fact.isRow ? 0 : label.implicitHeight
                    text: fact.modelData.value
                    textFormat: Text.PlainText
                    font: Style.caption
                    color: Style.colors.text
                    width: parent.width - (fact.isRow ? label.width + 16 : 0)
                    horizontalAlignment: fact.isRow ? Text.AlignRight : Text.AlignLeft
                    wrapMode: Text.Wrap
                    Accessible.ignored: true
                }
            }
        }
        TextLink {
            anchors.left: parent.left
            text: card.sdk.websiteLabel
            font: Style.caption
            width: Math.min(implicitWidth, parent.width)
            visible: card.sdk.website !== ""
            onClicked: card.sdk.openWebsite()
        }
    }
}
