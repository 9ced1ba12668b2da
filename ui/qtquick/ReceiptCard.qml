import QtQuick
import Quillon.Consent

// When expanded, shows the receipt of the stored decisions and a button to save it.
Card {
    id: card

    required property ReceiptAdapter receipt
    required property PreferenceCenterAdapter model
    property bool isExpanded: false
    // The content is about to be shown.
    signal opened

    function toggle() {
        if (!isExpanded) {
            opened()
            receipt.load()
        }
        isExpanded = !isExpanded
    }

    spacing: Style.metrics.gap
    endsInControl: true
    Accessible.name: receipt.name

    Expander {
        anchors.left: parent.left
        width: Math.min(implicitWidth, parent.width)
        text: card.receipt.name
        hint: card.isExpanded ? card.model.expandedDescription : card.model.collapsedDescription
        isExpanded: card.isExpanded
        onClicked: card.toggle()
    }
    PlainText {
        width: parent.width
        words: card.receipt.explanation
        visible: card.isExpanded
    }
    Progress {
        anchors.horizontalCenter: parent.horizontalCenter
        label: card.model.banner.loadingLabel
        visible: card.isExpanded && card.receipt.isLoading && lines.count === 0
    }
    Failure {
        width: parent.width
        banner: card.model.banner
        text: card.isExpanded ? card.receipt.failure : ""
        onRetried: card.receipt.load()
    }
    Repeater {
        id: lines
        model: card.isExpanded ? card.receipt.lines : []

        // Creating many lines in one turn would block the host's loop.
        Loader {
            id: place

            required property sdkFact modelData

            // qmllint disable unqualified
            width: card.innerWidth
            // qmllint enable unqualified
            asynchronous: true
            sourceComponent: place.modelData.label === "" ? heading : row

            Component {
                id: heading

                PlainText {
                    // qmllint disable unqualified
                    words: place.modelData.value
                    // qmllint enable unqualified
                    font: Style.label
                    topPadding: Style.metrics.smallGap
                    Accessible.role: Accessible.Heading
                }
            }
            Component {
                id: row

                // qmllint disable unqualified
                FactRow { fact: place.modelData }
                // qmllint enable unqualified
            }
        }
    }
    ConsentButton {
        id: button
        anchors.left: parent.left
        width: Math.min(implicitWidth, parent.width)
        isQuiet: true
        text: card.receipt.saveLabel
        hint: card.model.banner.activationHint
        visible: card.isExpanded && card.receipt.canSave
        onClicked: card.receipt.save()
        // A screen reader announces a message only if it belongs to the focused item.
        Accessible.name: activeFocus ? card.model.banner.sentences(text, card.receipt.saving) : text
    }
    PlainText {
        width: parent.width
        words: card.receipt.saving
        visible: button.visible && words !== ""
        bottomPadding: Style.metrics.gap
        Accessible.role: Accessible.AlertMessage
    }
}
