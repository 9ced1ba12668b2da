import QtQuick
import Quillon.Consent

Sheet {
    id: screen

    required property PreferenceCenterAdapter model

    // Content below the initially visible part is created after the first frame, since creating everything in one turn
    // would block the host's loop.
    property bool hasAppeared: false
    readonly property int seenAtFirst: 4

    function openFirstPurpose() {
        cards.itemAt(0)?.item?.toggleDetails() // qmllint disable
    }

    banner: model.banner
    title: model.name
    isBottom: isNarrow
    fillsHeight: true
    widest: isWide ? Style.metrics.columnsWidth : Style.metrics.listWidth
    isLoading: model.banner.isLoading
    canClose: isModal
    footerColor: Style.colors.footer
    failure: model.banner.failure
    onCloseRequested: model.close()
    onRetried: model.load()
    onIsOnScreenChanged: if (isOnScreen) hasAppeared = true

    header: [
        SheetHeader {
            width: parent.width
            banner: screen.model.banner
            heading: screen.model.heading
            canClose: screen.canClose
            onClosed: screen.closeRequested()
        },
        TabSelector {
            width: parent.width
            name: screen.model.name
            tabs: screen.model.tabs
            current: screen.model.tab
            visible: screen.hasBody
            onChosen: index => {
                screen.model.tab = index
                screen.toTop()
            }
        }
    ]

    Column {
        id: purposes
        width: parent.width
        spacing: Style.metrics.gap
        visible: screen.model.isAtPurposes

        RichTextView {
            width: parent.width
            content: screen.model.description
        }
        RichTextView {
            width: parent.width
            content: screen.model.guidance
            font: Style.caption
            color: Style.colors.quietText
        }
        Note {
            width: parent.width
            content: screen.model.consentModeNote
        }
        AllRow {
            width: parent.width
            preferences: screen.model
            following: saveButton
            visible: screen.model.hasSwitchablePurposes
        }
        Progress {
            anchors.horizontalCenter: parent.horizontalCenter
            label: screen.model.banner.loadingLabel
            visible: screen.model.arePurposesLoading && cards.count === 0
        }
        Failure {
            width: parent.width
            banner: screen.model.banner
            text: screen.model.purposesFailure
            onRetried: screen.model.load()
        }
        Flow {
            id: grid

            readonly property real cellWidth: Pixels.down((width - spacing * (screen.columns - 1)) / screen.columns, Screen.devicePixelRatio)

            width: parent.width
            spacing: Style.metrics.gap

            Repeater {
                id: cards
                model: screen.model.purposes

                // Creating many cards in one turn would block the host's loop.
                Loader {
                    id: place

                    required property PurposeAdapter modelData
                    required property int index

                    // qmllint disable unqualified
                    width: grid.cellWidth
                    active: screen.hasAppeared || index < screen.seenAtFirst
                    asynchronous: true
                    sourceComponent: PurposeCard {
                        id: card
                        width: place.width
                        purpose: place.modelData
                        model: screen.model
                        announcement: messageBar.text
                        onOpened: screen.revealGrowing(card)
                    // qmllint enable unqualified
                    }
                }
            }
        }
        Loader {
            active: screen.model.receipt !== null && cards.count > 0
            visible: active
            sourceComponent: ReceiptCard {
                id: receiptCard
                // qmllint disable unqualified
                width: purposes.width
                receipt: screen.model.receipt
                model: screen.model
                onOpened: screen.revealGrowing(receiptCard)
                // qmllint enable unqualified
            }
        }
    }
    Column {
        width: parent.width
        spacing: Style.metrics.gap
        visible: !screen.model.isAtPurposes

        RichTextView {
            width: parent.width
            content: screen.model.permissionsDescription
        }
        RichTextView {
            width: parent.width
            content: screen.model.permissionsGuidance
            font: Style.caption
            color: Style.colors.quietText
        }
        Progress {
            anchors.horizontalCenter: parent.horizontalCenter
            label: screen.model.banner.loadingLabel
            visible: screen.model.arePermissionsLoading && rows.count === 0
        }
        Failure {
            width: parent.width
            banner: screen.model.banner
            text: screen.model.permissionsFailure
            onRetried: screen.model.load()
        }
        Repeater {
            id: rows
            model: screen.model.permissions

            Loader {
                id: rowPlace

                required property PermissionAdapter modelData
                required property int index

                // qmllint disable unqualified
                width: purposes.width
                active: screen.hasAppeared
                asynchronous: true
                sourceComponent: PermissionRow {
                    width: rowPlace.width
                    permission: rowPlace.modelData
                    index: rowPlace.index
                    model: screen.model
                // qmllint enable unqualified
                }
            }
        }
    }

    message: Announcement {
        id: messageBar
        width: parent.width
    }
    footer: ConsentButton {
        id: saveButton
        width: parent.width
        text: screen.model.saveLabel
        hint: screen.model.banner.activationHint
        onClicked: screen.model.save()
        // A screen reader announces a message only if it belongs to the focused item.
        Accessible.name: activeFocus ? screen.model.banner.sentences(text, messageBar.text) : text
    }
    smallPrint: PoweredBy {
        width: parent.width
        color: screen.scrollsSmallPrint ? Style.colors.quietText : Style.colors.footerText
        visible: screen.model.banner.showsPoweredBy
    }

    Connections {
        target: screen.model // qmllint disable
        function onAnnounced(text: string) { messageBar.show(text) }
        function onSaved(text: string) {
            if (screen.isModal)
                screen.closingMessage = text
            else
                messageBar.show(text)
        }
    }
}
