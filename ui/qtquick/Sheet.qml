import QtQuick
import QtQuick.Templates as T
import Quillon.Consent

// The surface of every screen, with a header and a footer that stay while the body scrolls, as long as there is room for
// that. Modal, it is a sheet at the bottom or a card in the middle of the window; else a part of the page around it.
FocusScope {
    id: sheet

    property string title
    property bool isModal: true
    property bool isBottom: false
    property bool fillsHeight: false
    property real widest: 480
    property bool canClose: true
    property bool isLoading: false
    property color footerColor: Style.colors.background
    property alias header: headerColumn.data
    default property alias body: bodyColumn.data
    property alias footer: footerColumn.data
    // Takes the place of the body, from edge to edge, and scrolls by itself.
    property alias page: pagePlace.data
    signal closeRequested
    signal gone

    readonly property bool isNarrow: width < 600
    readonly property bool isFloating: !isModal || !isBottom || !isNarrow
    readonly property int margin: isNarrow ? 16 : 24
    readonly property int inset: width < 360 ? 16 : isNarrow ? 20 : 24
    readonly property real tallest: !isModal ? height : height - (isFloating ? 2 * Math.min(margin, height / 24) : Math.min(32, height / 16))
    readonly property bool hasPage: pagePlace.children.length > 0
    // A header and a footer that would take most of the height scroll along; the footer stays as long as it alone does not.
    readonly property bool scrollsHeader: !hasPage && headerColumn.implicitHeight + footerPanel.implicitHeight > tallest * 0.6
    readonly property bool scrollsFooter: scrollsHeader && footerPanel.implicitHeight > tallest * 0.4
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
    implicitHeight: isLoading ? 200 : panel.contentHeight
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

        readonly property real contentHeight: headerColumn.implicitHeight + bodyColumn.implicitHeight + footerPanel.implicitHeight + 4

        width: !sheet.isModal ? sheet.width : sheet.isFloating ? Math.min(sheet.widest, sheet.width - 2 * sheet.margin) : sheet.width
        height: !sheet.isModal ? sheet.height : sheet.isLoading ? Math.min(sheet.tallest, 200) : sheet.fillsHeight ? Math.min(sheet.tallest, sheet.isNarrow ? sheet.tallest : 820) : Math.min(sheet.tallest, contentHeight)
        x: (sheet.width - width) / 2
        y: !sheet.isModal ? 0 : (sheet.isFloating && !sheet.isBottom ? (sheet.height - height) / 2 : sheet.height - height - (sheet.isFloating ? sheet.margin : 0)) + (1 - sheet.shown) * 32
        radius: 20
        color: Style.colors.background
        border.width: sheet.isFloating ? 1 : 0
        border.color: Style.colors.hairline
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
                }
                Item { id: footerPlace; width: parent.width; height: sheet.scrollsFooter ? footerPanel.implicitHeight : 0 }
            }
        }
        Item {
            id: pagePlace
            anchors.fill: flick
            anchors.leftMargin: panel.border.width
            anchors.rightMargin: panel.border.width
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
            height: sheet.scrollsFooter || sheet.isLoading ? 0 : footerPanel.implicitHeight
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
            implicitHeight: footerColumn.implicitHeight
            radius: sheet.isFloating ? 20 : 0
            color: hasOwnColor ? sheet.footerColor : "transparent"
            visible: !sheet.isLoading

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
                bottomPadding: sheet.inset
                spacing: 8
            }
        }
        Progress {
            anchors.centerIn: parent
            visible: sheet.isLoading
        }
    }
}
