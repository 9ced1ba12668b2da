import QtQuick
import Quillon.Consent

// A purpose with its switch and, when expanded, its SDKs.
Card {
    id: card

    required property PurposeAdapter purpose
    required property PreferenceCenterAdapter model
    property bool isExpanded: false
    // The current explanation, if any.
    property string announcement
    // The details are about to be shown.
    signal opened

    function toggleDetails() {
        if (!isExpanded)
            opened()
        purpose.loadSdks()
        isExpanded = !isExpanded
    }

    spacing: Style.metrics.gap
    endsInControl: purpose.canExpand && !isExpanded
    Accessible.name: purpose.name

    Item {
        id: top

        // A long word gets the full width.
        readonly property bool isStacked: button.visible && name.longestWord > width - button.width - Style.metrics.gap

        width: parent.width
        implicitHeight: isStacked ? names.height + Style.metrics.hairGap + button.height : Math.max(names.height, button.visible ? button.height : 0)

        Column {
            id: names
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.rightMargin: button.visible && !top.isStacked ? button.width + 10 : 0
            y: top.isStacked ? 0 : (parent.height - height) / 2
            spacing: Style.metrics.hairGap

            Heading {
                id: name
                width: parent.width
                words: card.purpose.name
                wanted: Style.subHeading
            }
            PlainText {
                width: parent.width
                words: card.purpose.state
                font: Style.caption
                color: Style.colors.quietText
            }
            PlainText {
                width: parent.width
                words: card.purpose.reason
                font: Style.caption
                color: Style.colors.quietText
                visible: words !== ""
            }
        }
        ConsentSwitch {
            id: button
            anchors.right: parent.right
            anchors.rightMargin: -button.side
            y: top.isStacked ? names.height + Style.metrics.hairGap : Pixels.down((parent.height - height) / 2, Screen.devicePixelRatio)
            text: card.purpose.name
            hint: card.purpose.switchDescription
            isOn: card.purpose.isOn
            isSwitchable: card.purpose.isSwitchable
            visible: card.purpose.hasSwitch
            onClicked: card.purpose.tapToggle()
            // A screen reader announces a message only if it belongs to the focused item.
            Accessible.name: activeFocus ? card.model.banner.sentences(text, card.announcement) : text
        }
    }
    RichTextView {
        width: parent.width
        content: card.purpose.description
        visible: content.markup !== "" && (card.model.showsDescriptions || card.isExpanded)
    }
    Note {
        width: parent.width
        content: card.purpose.disclaimer
    }
    Expander {
        anchors.left: parent.left
        width: Math.min(implicitWidth, parent.width)
        text: card.model.detailsLabel
        hint: card.isExpanded ? card.model.expandedDescription : card.model.collapsedDescription
        isExpanded: card.isExpanded
        visible: card.purpose.canExpand
        onClicked: card.toggleDetails()
        Accessible.name: card.purpose.detailsName
    }
    Repeater {
        model: card.isExpanded ? card.purpose.sdks : []

        Column {
            id: part

            required property SdkAdapter modelData

            // qmllint disable unqualified
            width: card.innerWidth
            // qmllint enable unqualified
            spacing: Style.metrics.largeGap

            Hairline { width: parent.width }
            SdkCard {
                width: parent.width
                sdk: part.modelData
            }
        }
    }
}
