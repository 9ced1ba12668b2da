import QtQuick
import Quillon.Consent

Sheet {
    id: screen

    required property PreferenceCenterAdapter model

    readonly property bool isAtPurposes: model.tab === 0
    // What lies further down than anybody sees at first comes once the first picture is there: to lay out and draw all
    // of it in one turn would hold the host's loop.
    property bool hasAppeared: false
    readonly property int seenAtFirst: 4

    function openFirstPurpose() {
        cards.itemAt(0)?.item?.toggleDetails()
    }

    banner: model.banner
    title: model.heading
    isBottom: isNarrow
    fillsHeight: true
    widest: 640
    isLoading: model.banner.isLoading
    canClose: isModal
    footerColor: Style.colors.footer
    failure: model.banner.failure
    onCloseRequested: model.close()
    onRetried: model.load()
    onIsOnScreenChanged: if (isOnScreen) hasAppeared = true
    onIsAtPurposesChanged: scrollBy(-1e6)

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
            tabs: [screen.model.purposesTab, screen.model.permissionsTab]
            current: screen.model.tab
            visible: screen.hasBody
            onChosen: index => screen.model.tab = index
        }
    ]

    Column {
        width: parent.width
        spacing: 12
        visible: screen.isAtPurposes

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
        TextLink {
            anchors.left: parent.left
            text: screen.model.selectAllLabel
            hint: screen.model.banner.activationHint
            width: Math.min(implicitWidth, parent.width)
            visible: screen.model.hasSwitchablePurposes
            onClicked: screen.model.switchAll()
            Accessible.role: Accessible.Button
            // A screen reader hears a message that belongs to what it is at.
            Accessible.name: text + (screen.model.voiceOverText === "" ? "" : ". " + screen.model.voiceOverText)
        }
        Progress {
            anchors.horizontalCenter: parent.horizontalCenter
            visible: screen.model.arePurposesLoading && cards.count === 0
        }
        Failure {
            width: parent.width
            banner: screen.model.banner
            text: screen.model.purposesFailure
            onRetried: screen.model.load()
        }
        Repeater {
            id: cards
            model: screen.model.purposes

            // Many cards at once would hold the host's loop.
            Loader {
                id: place

                required property var modelData
                required property int index

                width: parent?.width ?? 0
                active: screen.hasAppeared || index < screen.seenAtFirst
                asynchronous: true
                sourceComponent: PurposeCard {
                    width: place.width
                    purpose: place.modelData
                    model: screen.model
                    announcement: messageBar.text
                }
            }
        }
    }
    Column {
        width: parent.width
        spacing: 12
        visible: !screen.isAtPurposes

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

                required property var modelData
                required property int index

                width: parent?.width ?? 0
                active: screen.hasAppeared
                asynchronous: true
                sourceComponent: PermissionRow {
                    width: rowPlace.width
                    permission: rowPlace.modelData
                    index: rowPlace.index
                    model: screen.model
                    beginsGroup: index === 0 || screen.model.permissions[index - 1].group !== permission.group
                }
            }
        }
    }

    footer: ConsentButton {
        width: parent.width
        text: screen.model.saveLabel
        hint: screen.model.banner.activationHint
        onClicked: screen.model.save()
    }
    smallPrint: PoweredBy {
        width: parent.width
        color: screen.scrollsSmallPrint ? Style.colors.quietText : Style.colors.footerText
        visible: screen.model.banner.showsPoweredBy
    }

    Announcement {
        id: messageBar
        parent: screen
        z: 1
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 96
        anchors.horizontalCenter: parent.horizontalCenter
        width: Math.min(parent.width - 48, 520)
    }
    Connections {
        target: screen.model
        function onAnnounced(text) { messageBar.show(text) }
    }
}
