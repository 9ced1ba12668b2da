import QtQuick
import Quillon.Consent

// The frame of every screen. Header and footer stay fixed while the body scrolls, if there is room. If height is
// scarce, first the small print scrolls with the body, then the header, last the footer. A modal sheet is at the bottom
// or in the middle of the window; otherwise it is part of a page.
FocusScope {
    id: sheet

    required property ConsentBannerAdapter banner
    property string title
    property bool isModal: true
    property bool isBottom: false
    property bool fillsHeight: false
    property real widest: Style.metrics.dialogWidth
    property bool canClose: true
    property bool isLoading: false
    // Shown instead of the body if that cannot be loaded.
    property string failure
    property color footerColor: Style.colors.background
    property alias header: headerColumn.data
    default property alias body: bodyColumn.data
    // Temporarily shown between body and footer.
    property alias message: messagePlace.data
    property alias footer: footerColumn.data
    // Below the footer.
    property alias smallPrint: smallPrintColumn.data
    // Replaces the body, without margins, and scrolls by itself.
    property alias page: pagePlace.data
    signal closeRequested
    signal retried
    signal gone

    readonly property bool isNarrow: width < Style.metrics.narrowWindow
    readonly property bool isWide: width >= Style.metrics.wideWindow
    readonly property bool isFloating: !isModal || !isBottom || !isNarrow
    readonly property int margin: isNarrow ? Style.metrics.largeGap : 2 * Style.metrics.gap
    readonly property int inset: width < Style.metrics.tinyWindow ? 16 : isNarrow ? 20 : 24
    readonly property real tallest: !isModal ? height : Pixels.down(height - (isFloating ? 2 * Math.min(margin, height / 24) : Math.min(32, height / 16)), Screen.devicePixelRatio)
    // Sheets grow with the text, so that lines hold as many words.
    readonly property real magnification: Math.max(1, Style.textScale)
    // The number of columns for the body.
    readonly property int columns: isWide && bodyColumn.width >= Style.metrics.listWidth * magnification ? 2 : 1
    readonly property bool hasPage: pagePlace.children.length > 0
    readonly property bool hasBody: !isLoading && failure === ""
    // The maximum shares of height for the fixed parts, and for the footer; beyond them, parts scroll.
    readonly property real mostThatStays: 0.6 * tallest
    readonly property real mostOfFooter: 0.5 * tallest
    readonly property bool isTight: hasBody && !hasPage && panel.contentHeight > tallest
    readonly property real footerHeight: footerColumn.implicitHeight + inset
    readonly property real smallPrintHeight: smallPrintColumn.implicitHeight > 0 ? smallPrintColumn.implicitHeight + Style.metrics.smallGap : 0
    readonly property bool scrollsSmallPrint: isTight && headerColumn.implicitHeight + footerHeight + smallPrintHeight > mostThatStays
    readonly property bool scrollsHeader: scrollsSmallPrint && headerColumn.implicitHeight + footerHeight > mostThatStays
    readonly property bool scrollsFooter: scrollsHeader && footerHeight > mostOfFooter
    property real shown: isModal ? 0 : 1
    // Shown with its content.
    readonly property bool isOnScreen: shown === 1 && visible && !isLoading && !isLeaving
    property bool isLeaving: false
    // A message shown briefly after the sheet has closed.
    property string closingMessage
    // Another screen is above it.
    property bool isCovered: false

    function enter() {
        panel.forceActiveFocus(Qt.PopupFocusReason)
        appearDelay.start()
        appearWhenReady()
    }
    function appearWhenReady() {
        if (parent && !isLeaving && (!isLoading || !appearDelay.running))
            shown = 1
    }
    function leave() {
        isLeaving = true
        if (shown === 0)
            gone()
        else
            shown = 0
    }
    // A sheet in a page leaves the key to the page.
    function leaveByKey(event) {
        event.accepted = isModal
        if (isModal && canClose && !event.isAutoRepeat)
            closeRequested()
    }
    function reveal(item) { scroll.reveal(item) }
    function revealGrowing(item) { scroll.revealGrowing(item) }
    function toTop() { scroll.contentY = 0 }

    enabled: !isCovered && !isLeaving
    implicitWidth: Style.metrics.tinyWindow
    implicitHeight: panel.contentHeight
    anchors.fill: isModal ? parent : undefined
    LayoutMirroring.enabled: Style.isMirrored
    LayoutMirroring.childrenInherit: true
    onIsLoadingChanged: appearWhenReady()
    onShownChanged: {
        if (!isLeaving || shown > 0)
            return
        if (closingMessage === "")
            gone()
        else
            farewellBar.show(closingMessage)
    }
    Behavior on shown {
        enabled: Style.duration > 0
        NumberAnimation { duration: Style.duration; easing.type: Easing.OutCubic }
    }

    Keys.onEscapePressed: event => leaveByKey(event)
    Keys.onBackPressed: event => leaveByKey(event)
    Keys.onPressed: event => event.accepted = scroll.moveBy(event.key)

    // Waits briefly, so that content that loads quickly appears complete.
    Timer {
        id: appearDelay
        interval: 250
        onTriggered: sheet.appearWhenReady()
    }
    Rectangle {
        anchors.fill: parent
        color: Style.colors.scrim
        opacity: sheet.shown
        visible: sheet.isModal
    }
    // Blocks input to the host below. A tap beside the sheet has no effect.
    MouseArea {
        anchors.fill: parent
        hoverEnabled: true
        acceptedButtons: Qt.AllButtons
        enabled: sheet.isModal
        onWheel: wheel => wheel.accepted = true
    }
    SoftEdge {
        anchors.fill: panel
        radius: surface.radius
        opacity: panel.opacity
        visible: sheet.isModal && sheet.isFloating
    }

    Announcement {
        id: farewellBar
        anchors.bottom: parent.bottom
        anchors.bottomMargin: sheet.margin
        anchors.horizontalCenter: parent.horizontalCenter
        width: Math.min(parent.width - 2 * sheet.margin, Style.metrics.dialogWidth * sheet.magnification)
        onEnded: sheet.gone()
    }
    AccessibleScope {
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
            const wanted = !sheet.fillsHeight ? contentHeight : sheet.isNarrow || sheet.isWide ? sheet.tallest : Style.metrics.listHeight * sheet.magnification
            return Pixels.down(Math.min(sheet.tallest, wanted), Screen.devicePixelRatio)
        }
        x: Pixels.down((sheet.width - width) / 2, Screen.devicePixelRatio)
        y: {
            if (!sheet.isModal)
                return 0
            const left = sheet.height - height
            const above = !sheet.isFloating ? left : sheet.isBottom ? left - sheet.margin : left / 2
            return Pixels.down(above, Screen.devicePixelRatio) + (1 - sheet.shown) * 32
        }
        opacity: sheet.shown
        // A screen reader announces the new name of the focused item.
        title: sheet.isLoading ? sheet.banner.loadingLabel : sheet.failure !== "" ? sheet.failure : sheet.title
        isModal: sheet.isModal
        isCovered: sheet.isCovered || sheet.isLeaving

        Accessible.role: sheet.isModal ? Accessible.Dialog : Accessible.Grouping

        SheetSurface {
            id: surface
            anchors.fill: parent
            // Windows may end within a pixel of the screen.
            anchors.bottomMargin: sheet.isFloating ? 0 : -1
            isFloating: sheet.isFloating
            footColor: footerFixed.visible ? sheet.footerColor : color
        }
        Item {
            id: headerFixed
            width: parent.width
            height: sheet.scrollsHeader ? 0 : headerColumn.implicitHeight
        }
        ScrollArea {
            id: scroll
            y: headerFixed.height
            width: parent.width
            height: parent.height - y - messagePlace.height - footerFixed.height
            contentHeight: content.height
            // Keeps clear of the rounded corners.
            topEdge: headerFixed.height > 0 ? 0 : Style.metrics.sheetRadius
            bottomEdge: footerFixed.height > 0 || !sheet.isFloating ? 0 : Style.metrics.sheetRadius
            barName: sheet.title
            visible: !sheet.isLoading && !sheet.hasPage

            Column {
                id: content
                width: scroll.width
                // Header and footer are in the content only if it scrolls; otherwise the footer would float above the
                // bottom.
                Item { id: headerPlace; width: parent.width; height: sheet.scrollsHeader ? headerColumn.implicitHeight : 0 }
                Column {
                    id: bodyColumn
                    x: sheet.inset
                    width: parent.width - 2 * sheet.inset
                    spacing: Style.metrics.largeGap
                    topPadding: Style.metrics.smallGap
                    bottomPadding: Style.metrics.largeGap
                    visible: sheet.hasBody
                }
                Item { id: footerPlace; width: parent.width; height: sheet.scrollsFooter ? footerPanel.implicitHeight : 0 }
                Item { id: smallPrintPlace; width: parent.width; height: sheet.scrollsSmallPrint ? sheet.smallPrintHeight + sheet.inset - Style.metrics.smallGap : 0 }
                Item {
                    width: parent.width
                    height: Math.max(scroll.height, failureView.implicitHeight + sheet.inset)
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
            anchors.fill: scroll
        }
        Hairline {
            width: parent.width
            y: headerFixed.height
            visible: !sheet.scrollsHeader && (sheet.hasPage || scroll.contentY > 0)
        }
        Column {
            id: messagePlace
            x: sheet.inset
            anchors.bottom: footerFixed.top
            width: parent.width - 2 * sheet.inset
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
            bottomPadding: Style.metrics.smallGap
            spacing: Style.metrics.largeGap
        }
        Rectangle {
            id: footerPanel

            readonly property bool hasOwnColor: !Qt.colorEqual(sheet.footerColor, Style.colors.background)

            parent: sheet.scrollsFooter ? footerPlace : footerFixed
            width: parent.width
            height: implicitHeight
            implicitHeight: sheet.footerHeight + (sheet.scrollsSmallPrint ? 0 : sheet.smallPrintHeight)
            radius: sheet.isFloating ? surface.radius : 0
            color: hasOwnColor ? sheet.footerColor : "transparent"

            Rectangle {
                width: parent.width
                height: footerPanel.radius
                color: footerPanel.color
            }
            Hairline {
                width: parent.width
                visible: !sheet.scrollsFooter && (footerPanel.hasOwnColor || sheet.hasPage || scroll.contentHeight - scroll.height - scroll.contentY > 1)
            }
            Column {
                id: footerColumn
                x: sheet.inset
                width: parent.width - 2 * sheet.inset
                topPadding: Style.metrics.gap
                spacing: Style.metrics.smallGap
            }
            Item {
                id: smallPrintFixed
                y: footerColumn.implicitHeight + Style.metrics.smallGap
                width: parent.width
            }
        }
        Column {
            id: smallPrintColumn
            parent: sheet.scrollsSmallPrint ? smallPrintPlace : smallPrintFixed
            x: sheet.inset
            width: parent.width - 2 * sheet.inset
            spacing: Style.metrics.smallGap
        }
        // The border of a floating sheet.
        Rectangle {
            anchors.fill: parent
            radius: surface.radius
            color: "transparent"
            border.width: Pixels.line(1, Screen.devicePixelRatio)
            border.pixelAligned: false
            border.color: Style.colors.hairline
            visible: sheet.isFloating
        }
        Progress {
            anchors.centerIn: parent
            label: sheet.banner.loadingLabel
            visible: sheet.isLoading
        }
    }
}
