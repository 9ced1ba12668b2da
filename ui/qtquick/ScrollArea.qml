import QtQuick
import QtQuick.Templates as T
import Quillon.Consent

// A scroll area for pointer and keyboard, which scrolls the focused item into view.
Flickable {
    id: area

    property string barName
    property real topEdge: 0
    property real bottomEdge: 0
    readonly property Item focusedItem: Window.activeFocusItem
    readonly property int step: 48
    // The item that is about to grow.
    property Item growing: null

    // Shows as much of the item as fits, from its top.
    function reveal(item: Item) {
        const margin = Style.metrics.largeGap
        const place = item.mapToItem(contentItem, 0, 0)
        const top = place.y - margin
        const bottom = place.y + item.height + margin
        if (top < contentY)
            moveTo(top)
        else if (bottom > contentY + height)
            moveTo(Math.min(top, bottom - height))
    }
    // Layout follows with the next frames, so repeats revealing as the content grows.
    function revealGrowing(item: Item) {
        growing = item
        growth.restart()
    }
    function moveTo(position: real) {
        contentY = Math.max(0, Math.min(contentHeight - height, position))
    }
    // False if the key does not scroll.
    function moveBy(key: int): bool {
        const page = height * 0.8
        const distances = {
            [Qt.Key_Up]: -step, [Qt.Key_Down]: step, [Qt.Key_PageUp]: -page, [Qt.Key_PageDown]: page,
            [Qt.Key_Home]: -contentHeight, [Qt.Key_End]: contentHeight
        }
        if (distances[key] === undefined)
            return false
        moveTo(contentY + distances[key])
        return true
    }
    function revealFocus() {
        for (let item = focusedItem; item; item = item.parent) {
            if (item === contentItem)
                reveal(focusedItem)
        }
    }

    contentWidth: width
    boundsBehavior: Flickable.StopAtBounds
    interactive: contentHeight > height
    clip: true
    onFocusedItemChanged: revealFocus()
    // For example, a message has appeared.
    onHeightChanged: revealFocus()
    onContentHeightChanged: if (growing) reveal(growing)

    Timer {
        id: growth
        interval: 300
        onTriggered: area.growing = null
    }

    T.ScrollBar.vertical: T.ScrollBar {
        id: bar
        width: Style.metrics.scrollBar
        padding: 2
        topPadding: 2 + area.topEdge
        bottomPadding: 2 + area.bottomEdge
        minimumSize: Math.min(1, Style.metrics.smallestThumb / Math.max(1, area.height))
        policy: T.ScrollBar.AsNeeded
        Accessible.name: area.barName
        contentItem: Rectangle {
            implicitWidth: 4
            radius: 2
            color: Style.colors.quietText
            opacity: area.interactive ? 0.8 : 0
        }
    }
}
