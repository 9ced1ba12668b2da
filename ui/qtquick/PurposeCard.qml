import QtQuick
import Quillon.Consent

// A purpose with its switch, and, opened, with the components that it covers.
Rectangle {
    id: card

    required property var purpose
    required property PreferenceCenterAdapter model
    property bool isExpanded: false
    // While it is being explained.
    property string announcement

    readonly property bool canExpand: purpose.hasSdks || (!model.showsDescriptions && purpose.description.markup !== "")

    function toggleDetails() {
        purpose.loadSdks()
        isExpanded = !isExpanded
    }

    // The last control has room of its own.
    implicitHeight: column.height + (expander.visible && !isExpanded ? 20 : 32)
    radius: 16
    color: Style.colors.card
    border.width: 1
    border.color: Style.colors.hairline
    Accessible.role: Accessible.Grouping
    Accessible.name: purpose.name

    Column {
        id: column
        x: 16
        y: 16
        width: parent.width - 32
        spacing: 12

        Item {
            id: top

            // A long word has the whole width.
            readonly property bool isStacked: button.visible && name.longestWord > width - button.width - 12

            width: parent.width
            implicitHeight: isStacked ? names.height + 4 + button.height : Math.max(names.height, button.visible ? button.height : 0)

            Column {
                id: names
                anchors.left: parent.left
                anchors.right: parent.right
                anchors.rightMargin: button.visible && !top.isStacked ? button.width + 10 : 0
                y: top.isStacked ? 0 : (parent.height - height) / 2
                spacing: 4

                FittedText {
                    id: name
                    width: parent.width
                    text: card.purpose.name
                    wanted: Style.subHeading
                }
                Text {
                    width: parent.width
                    text: card.purpose.state
                    textFormat: Text.PlainText
                    font: Style.caption
                    color: Style.colors.quietText
                    wrapMode: Text.Wrap
                    horizontalAlignment: Text.AlignLeft
                }
            }
            ConsentSwitch {
                id: button
                anchors.right: parent.right
                anchors.rightMargin: -2
                y: top.isStacked ? names.height + 4 : (parent.height - height) / 2
                text: card.purpose.name
                isOn: card.purpose.isOn
                isSwitchable: card.purpose.isSwitchable
                visible: card.purpose.hasSwitch
                onClicked: card.purpose.tapToggle()
                // A screen reader hears a message that belongs to what it is at.
                Accessible.name: text + (activeFocus && card.announcement !== "" ? ". " + card.announcement : "")
                Accessible.description: card.purpose.state + ". " + (isSwitchable ? card.purpose.hint : card.purpose.explanation)
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
        Pressable {
            id: expander

            anchors.left: parent.left
            text: card.model.detailsLabel
            implicitWidth: Math.ceil(label.implicitWidth) + 4 + chevron.width
            implicitHeight: Math.max(44, label.implicitHeight + 16)
            visible: card.canExpand
            onClicked: card.toggleDetails()
            Accessible.name: text + ", " + card.purpose.name
            Accessible.description: (card.isExpanded ? card.model.expandedState : card.model.collapsedState) + ". " + (card.isExpanded ? card.model.collapseHint : card.model.expandHint)

            Text {
                id: label
                anchors.left: parent.left
                anchors.verticalCenter: parent.verticalCenter
                text: expander.text
                textFormat: Text.PlainText
                font: expander.font
                color: Style.colors.link
                Accessible.ignored: true
            }
            Icon {
                id: chevron
                anchors.left: label.right
                anchors.leftMargin: 4
                anchors.verticalCenter: parent.verticalCenter
                width: 20 * Style.textScale
                height: width
                shape: Icon.ChevronDown
                color: Style.colors.link
                rotation: card.isExpanded ? 180 : 0

                Behavior on rotation {
                    enabled: Style.duration > 0
                    NumberAnimation { duration: Style.duration }
                }
            }
            FocusRing {
                isShown: expander.visualFocus
                anchors.topMargin: 4
                anchors.bottomMargin: 4
            }
        }
        Repeater {
            model: card.isExpanded ? card.purpose.sdks : []

            Column {
                required property var modelData

                width: column.width
                spacing: 16

                Rectangle {
                    width: parent.width
                    height: 1
                    color: Style.colors.hairline
                }
                SdkCard {
                    width: parent.width
                    sdk: parent.modelData
                }
            }
        }
    }
}
