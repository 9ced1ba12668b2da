import QtQuick
import Quillon.Consent

// The choice between the pages of a screen.
Rectangle {
    id: selector

    property var tabs: []
    property int current: 0
    signal chosen(int index)

    readonly property real share: (width - 8) / Math.max(1, tabs.length)
    readonly property bool isRow: made.every(segment => segment.implicitWidth <= share)
    // A long word in one of them makes the text of all smaller.
    readonly property int textSize: Math.min(...made.map(segment => segment.fittingTextSize))
    property var made: []

    implicitHeight: grid.height + 8
    radius: 12
    color: Style.colors.footer
    border.width: 1
    border.color: Style.colors.hairline
    Accessible.role: Accessible.PageTabList

    Grid {
        id: grid
        x: 4
        y: 4
        width: parent.width - 8
        columns: selector.isRow ? selector.tabs.length : 1

        Repeater {
            id: segments
            model: selector.tabs
            onItemAdded: (index, item) => selector.made = selector.made.concat(item)
            onItemRemoved: (index, item) => selector.made = selector.made.filter(other => other !== item)

            Pressable {
                id: segment

                required property int index
                required property string modelData
                readonly property bool isCurrent: index === selector.current
                readonly property alias fittingTextSize: words.fittingSize

                function go(distance) {
                    const next = segments.itemAt(index + distance)
                    if (!next)
                        return
                    next.forceActiveFocus(Qt.TabFocusReason)
                    next.clicked()
                }

                text: modelData
                font: Style.tab
                width: selector.isRow ? selector.share : grid.width
                implicitWidth: words.lineWidth + 24
                implicitHeight: Math.max(44, words.implicitHeight + 16)
                onClicked: selector.chosen(index)
                Accessible.role: Accessible.PageTab
                Accessible.selectable: true
                Accessible.selected: isCurrent
                Keys.onLeftPressed: go(Style.isMirrored ? 1 : -1)
                Keys.onRightPressed: go(Style.isMirrored ? -1 : 1)

                Rectangle {
                    anchors.fill: parent
                    radius: 8
                    color: segment.isCurrent ? Style.colors.selector : "transparent"

                    FocusRing {
                        isShown: segment.visualFocus
                    }
                }
                FittedText {
                    id: words
                    anchors.centerIn: parent
                    width: parent.width - 24
                    text: segment.text
                    wanted: segment.font
                    size: selector.textSize
                    color: segment.isCurrent ? Style.colors.selectorText : Style.colors.footerText
                    horizontalAlignment: Text.AlignHCenter
                    Accessible.ignored: true
                }
            }
        }
    }
}
