import QtQuick
import Quillon.Consent

// An SDK covered by a purpose, with its facts.
Item {
    id: card

    required property SdkAdapter sdk

    implicitHeight: column.height

    Picture {
        id: logo
        anchors.left: parent.left
        width: Style.metrics.sdkLogo
        height: width
        source: card.sdk.logo
        visible: card.sdk.logo.exists
        Accessible.ignored: true
    }
    Column {
        id: column
        anchors.left: parent.left
        anchors.leftMargin: card.sdk.logo.exists ? logo.width + Style.metrics.gap : 0
        anchors.right: parent.right
        spacing: Style.metrics.hairGap

        PlainText {
            width: parent.width
            words: card.sdk.name
            font: Style.label
            Accessible.role: Accessible.Heading
        }
        RichTextView {
            width: parent.width
            content: card.sdk.description
            font: Style.caption
        }
        Item { width: 1; height: Style.metrics.hairGap }
        Repeater {
            model: card.sdk.facts

            FactRow {
                required property sdkFact modelData

                fact: modelData
                // qmllint disable unqualified
                width: column.width
                // qmllint enable unqualified
            }
        }
        TextLink {
            anchors.left: parent.left
            text: card.sdk.websiteLabel
            font: Style.caption
            width: Math.min(implicitWidth, parent.width)
            visible: card.sdk.website !== ""
            onClicked: card.sdk.openWebsite()
            Accessible.name: card.sdk.websiteName
        }
    }
}
