import QtQuick
import QtQuick.Templates as T
import Quillon.Consent

// The surface of every screen, with a header and a footer that stay while the body scrolls, as long as there is room for
// that. Where height is scarce the small print scrolls along first, then the header, and the footer last. Modal, it is a
// sheet at the bottom or a card in the middle of the window; else a part of the page around it.
FocusScope {
    id: sheet

    required property ConsentBannerAdapter banner
    property string title
    property bool isModal: true
    property bool isBottom: false
    property bool fillsHeight: false
    property real widest: 480
    property bool canClose: true
    property bool isLoading: false
    // Takes the place of the body, when that cannot be loaded.
    property string failure
    property color footerColor: Style.colors.background
    property alias header: headerColumn.data
    default property alias body: bodyColumn.data
    property alias footer: footerColumn.data
    // Below the footer.
    property alias smallPrint: smallPrintColumn.data
    // Takes the place of the body, from edge to edge, and scrolls by itself.
    property alias page: pagePlace.data
    signal closeRequested
    signal retried
    signal gone

    readonly property bool isNarrow: width < 600
    readonly property bool isFloating: !isModal || !isBottom || !isNarrow
    readonly property int margin: isNarrow ? 16 : 24
    readonly property int inset: width < 360 ? 16 : isNarrow ? 20 : 24
    readonly property real tallest: !isModal ? height : height - (isFloating ? 2 * Math.min(margin, height / 24) : Math.min(32, height / 16))
    // Lines hold as many words of large text.
    readonly property real magnification: Math.max(1, Style.textScale)
    readonly property bool hasPage: pagePlace.children.length > 0
    readonly property bool hasBody: !isLoading && failure === ""
    readonly property bool isTight: hasBody && !hasPage && panel.contentHeight > tallest
    readonly property real footerHeight: footerColumn.implicitHeight + inset
    readonly property real smallPrintHeight: smallPrintColumn.implicitHeight > 0 ? smallPrintColumn.implicitHeight + 8 : 0
    readonly property bool scrollsSmallPrint: isTight && headerColumn.implicitHeight + footerHeight + smallPrintHeight > tallest * 0.6
    readonly property bool scrollsHeader: scrollsSmallPrint && headerColumn.implicitHeight + footerHeight > tallest * 0.6
    readonly property bool scrollsFooter: scrollsHeader && footerHeight > tallest * 0.5
    property real shown: isModal ? 0 : 1
    // With what it is about.
    readonly property bool isOnScreen: shown === 1 && visible && !isLoading && !isLeaving
    property bool isLeaving: false

    function enter() {
        panel.forceActiveFocus(Qt.PopupFocusReason)
        patience.start()
        appearWhenReady()
    }
    function appearWhenReady() {
        if (parent && !isLeaving && (!isLoading || !patience.running))
            shown = 1
    }
    function leave() {
        isLeaving = true
        enabled = false
        if (shown === 0)
            gone()
        else
            shown = 0
    }
    // What is part of a page leaves the key to it.
    function leaveByKey(event) {
        event.accepted = isModal
        if (isModal && canClose)
            closeRequested()
    }
    function reveal(item) {
        const place = item.mapToItem(content, 0, 0)
        const above = 16
        if (place.y - above < flick.contentY)
            flick.contentY = Math.max(0, place.y - above)
        else if (place.y + item.height + above > flick.contentY + flick.height)
            flick.contentY = Math.min(flick.contentHeight - flick.height, place.y + item.height + above - flick.height)
    }
    function scrollBy(distance) {
        flick.contentY = Math.max(0, Math.min(flick.contentHeight - flick.height, flick.contentY + distance))
    }

    implicitWidth: 360
    implicitHeight: panel.contentHeight
    anchors.fill: isModal ? parent : undefined
    LayoutMirroring.enabled: Style.isMirrored
    LayoutMirroring.childrenInherit: true
    onIsLoadingChanged: appearWhenReady()
    onShownChanged: if (isLeaving && shown === 0) gone()
    Behavior on shown {
        enabled: Style.duration > 0
        NumberAnimation { duration: Style.duration; easing.type: Easing.OutCubic }
    }

    Keys.onEscapePressed: event => leaveByKey(event)
    Keys.onBackPressed: event => leaveByKey(event)
    Keys.onUpPressed: scrollBy(-48)
    Keys.onDownPressed: scrollBy(48)
    Keys.onPressed: event => {
        const page = flick.height * 0.8
        const distances = { [Qt.Key_PageUp]: -page, [Qt.Key_PageDown]: page, [Qt.Key_Home]: -flick.contentHeight, [Qt.Key_End]: flick.contentHeight }
        if (distances[event.key] === undefined)
            return
        scrollBy(distances[event.key])
        event.accepted = true
    }

    // What loads quickly appears complete.
    Timer {
        id: patience
        interval: 250
        onTriggered: sheet.appearWhenReady()
    }
    Rectangle {
        anchors.fill: parent
        color: Style.colors.scrim
        opacity: sheet.shown
        visible: sheet.isModal
    }
    // Nothing passes to the host below. A tap beside the sheet answers nothing.
    MouseArea {
        anchors.fill: parent
        hoverEnabled: true
        acceptedButtons: Qt.AllButtons
        enabled: sheet.isModal
        onWheel: wheel => wheel.accepted = true
    }
    // A soft edge against what lies below.
    Repeater {
        model: 3

        Rectangle {
            required property int index

            anchors.fill: panel
            anchors.margins: -2 * (index + 1)
            radius: panel.radius + 2 * (index + 1)
            color: "transparent"
            border.width: 2
            border.color: Qt.rgba(0, 0, 0, 0.1 - index * 0.03)
            opacity: panel.opacity
            visible: sheet.isModal && sheet.isFloating
        }
    }

    Rectangle {
        id: panel

        readonly property real contentHeight: {
            if (!sheet.hasBody)
                return Math.max(200, headerColumn.implicitHeight + failureView.implicitHeight + sheet.inset)
            return headerColumn.implicitHeight + bodyColumn.implicitHeight + sheet.footerHeight + sheet.smallPrintHeight + 4
        }

        width: !sheet.isModal ? sheet.width : sheet.isFloating ? Math.min(sheet.widest * sheet.magnification, sheet.width - 2 * sheet.margin) : sheet.width
        height: {
            if (!sheet.isModal)
                return sheet.height
            if (sheet.fillsHeight)
                return sheet.isNarrow ? sheet.tallest : Math.min(sheet.tallest, 820 * sheet.magnification)
            return Math.min(sheet.tallest, contentHeight)
        }
        x: (sheet.width - width) / 2
        y: !sheet.isModal ? 0 : (sheet.isFloating && !sheet.isBottom ? (sheet.height - height) / 2 : sheet.height - height - (sheet.isFloating ? sheet.margin : 0)) + (1 - sheet.shown) * 32
        radius: 20
        color: Style.colors.background
        opacity: sheet.shown

        Accessible.role: sheet.isModal ? Accessible.Dialog : Accessible.Grouping
        Accessible.name: sheet.title
        Accessible.focusable: sheet.isModal

        // A sheet at the bottom runs out of the window with its lower corners.
        Rectangle {
            anchors.bottom: parent.bottom
            width: parent.width
            height: 20
            color: footerFixed.visible ? sheet.footerColor : parent.color
            visible: !sheet.isFloating
        }
        Item {
            id: headerFixed
            width: parent.width
            height: sheet.scrollsHeader ? 0 : headerColumn.implicitHeight
        }
        Flickable {
            id: flick

            // With the keyboard, what has the focus comes into view.
            readonly property Item focusedItem: Window.activeFocusItem

            y: headerFixed.height
            width: parent.width
            height: parent.height - y - footerFixed.height
            contentWidth: width
            contentHeight: content.height
            boundsBehavior: Flickable.StopAtBounds
            interactive: contentHeight > height
            clip: true
            visible: !sheet.isLoading && !sheet.hasPage
            onFocusedItemChanged: {
                for (let item = focusedItem; item; item = item.parent) {
                    if (item === content)
                        sheet.reveal(focusedItem)
                }
            }

            T.ScrollBar.vertical: T.ScrollBar {
                width: 8
                padding: 2
                // Clear of the rounded corners.
                topPadding: headerFixed.height > 0 ? 2 : panel.radius
                bottomPadding: footerFixed.height > 0 || !sheet.isFloating ? 2 : panel.radius
                policy: T.ScrollBar.AsNeeded
                contentItem: Rectangle {
                    implicitWidth: 4
                    radius: 2
                    color: Style.colors.quietText
                    opacity: flick.interactive ? 0.6 : 0
                }
            }
            Column {
                id: content
                width: flick.width
                // Without anything to scroll the footer would hang in the air.
                Item { id: headerPlace; width: parent.width; height: sheet.scrollsHeader ? headerColumn.implicitHeight : 0 }
                Column {
                    id: bodyColumn
                    x: sheet.inset
                    width: parent.width - 2 * sheet.inset
                    spacing: 16
                    topPadding: 8
                    bottomPadding: 16
                    visible: sheet.hasBody
                }
                Item { id: footerPlace; width: parent.width; height: sheet.scrollsFooter ? footerPanel.implicitHeight : 0 }
                Item { id: smallPrintPlace; width: parent.width; height: sheet.scrollsSmallPrint ? sheet.smallPrintHeight + sheet.inset - 8 : 0 }
                Item {
                    width: parent.width
                    height: Math.max(flick.height, failureView.implicitHeight + sheet.inset)
                    visible: sheet.failure !== ""

                    Failure {
                        id: failureView
                        x: sheet.inset
                        y: (parent.height - sheet.inset - height) / 2
                        width: parent.width - 2 * sheet.inset
                        banner: sheet.banner
                        text: sheet.failure
                        isCentered: true
                        onRetried: sheet.retried()
                    }
                }
            }
        }
        Item {
            id: pagePlace
            anchors.fill: flick
        }
        Rectangle {
            width: parent.width
            height: 1
            y: headerFixed.height
            color: Style.colors.hairline
            visible: !sheet.scrollsHeader && (sheet.hasPage || flick.contentY > 0)
        }
        Item {
            id: footerFixed
            anchors.bottom: parent.bottom
            width: parent.width
            height: sheet.scrollsFooter || !sheet.hasBody ? 0 : footerPanel.implicitHeight
            visible: height > 0
        }

        Column {
            id: headerColumn
            parent: sheet.scrollsHeader ? headerPlace : headerFixed
            x: sheet.inset
            width: parent.width - 2 * sheet.inset
            topPadding: sheet.inset
            bottomPadding: 8
            spacing: 16
        }
        Rectangle {
            id: footerPanel

            readonly property bool hasOwnColor: !Qt.colorEqual(sheet.footerColor, Style.colors.background)

            parent: sheet.scrollsFooter ? footerPlace : footerFixed
            width: parent.width
            height: implicitHeight
            implicitHeight: sheet.footerHeight + (sheet.scrollsSmallPrint ? 0 : sheet.smallPrintHeight)
            radius: sheet.isFloating ? panel.radius : 0
            color: hasOwnColor ? sheet.footerColor : "transparent"

            Rectangle {
                width: parent.width
                height: parent.radius
                color: parent.color
            }
            Rectangle {
                width: parent.width
                height: 1
                color: Style.colors.hairline
                visible: !sheet.scrollsFooter && (footerPanel.hasOwnColor || sheet.hasPage || flick.contentHeight - flick.height - flick.contentY > 1)
            }
            Column {
                id: footerColumn
                x: sheet.inset
                width: parent.width - 2 * sheet.inset
                topPadding: 12
                spacing: 8
            }
            Item {
                id: smallPrintFixed
                y: footerColumn.implicitHeight + 8
                width: parent.width
            }
        }
        Column {
            id: smallPrintColumn
            parent: sheet.scrollsSmallPrint ? smallPrintPlace : smallPrintFixed
            x: sheet.inset
            width: parent.width - 2 * sheet.inset
            spacing: 8
        }
        // The edge of what floats.
        Rectangle {
            anchors.fill: parent
            radius: parent.radius
            color: "transparent"
            border.width: 1
            border.color: Style.colors.hairline
            visible: sheet.isFloating
        }
        Progress {
            anchors.centerIn: parent
            visible: sheet.isLoading
        }
    }
}
