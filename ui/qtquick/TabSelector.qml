import QtQuick
import Quillon.Consent

// The tabs of a screen.
Rectangle {
    id: selector

    property string name
    property alias tabs: row.model
    property int current: 0
    signal chosen(int index)

    implicitHeight: row.height + 2 * row.x
    radius: Style.metrics.radius
    color: Style.colors.footer
    border.width: Pixels.line(1, Screen.devicePixelRatio)
    border.pixelAligned: false
    border.color: Style.colors.hairline
    Accessible.role: Accessible.PageTabList
    Accessible.name: name

    EqualRow {
        id: row

        x: Style.metrics.hairGap
        y: x
        width: parent.width - 2 * x
        columnSpacing: 0
        rowSpacing: 0
        delegate: Pressable {
            id: segment

            required property int index
            required property string modelData
            // qmllint disable unqualified
            readonly property bool isCurrent: index === selector.current
            readonly property int forward: Style.isMirrored ? -1 : 1

            // Arrow keys: left and right in a row, up and down in a column.
            function go(event, isAlongRow, distance) {
                const next = row.at(index + distance)
                event.accepted = isAlongRow === row.isRow && next !== null
                if (!event.accepted)
                    return
                next.forceActiveFocus(Qt.TabFocusReason)
                selector.chosen(index + distance)
            }

            text: modelData
            font: Style.tab
            width: row.cellWidth
            height: row.cellHeight
            implicitWidth: Words.lineOf(text, font) + 2 * Style.metrics.gap
            implicitHeight: Math.max(Style.metrics.target, words.height + Style.metrics.largeGap)
            onClicked: selector.chosen(index)
            // qmllint enable unqualified
            Accessible.role: Accessible.PageTab
            Accessible.selectable: true
            Accessible.selected: isCurrent
            Keys.onLeftPressed: event => go(event, true, -forward)
            Keys.onRightPressed: event => go(event, true, forward)
            Keys.onUpPressed: event => go(event, false, -1)
            Keys.onDownPressed: event => go(event, false, 1)

            Rectangle {
                anchors.fill: parent
                radius: Style.metrics.smallRadius
                color: segment.isCurrent ? Style.colors.selector : "transparent"

                FocusRing {
                    isShown: segment.visualFocus
                }
            }
            PlainText {
                id: words
                anchors.centerIn: parent
                width: parent.width - 2 * Style.metrics.gap
                words: segment.text
                font: segment.font
                color: segment.isCurrent ? Style.colors.selectorText : Style.colors.footerText
                horizontalAlignment: Text.AlignHCenter
                Accessible.ignored: true
            }
        }
    }
}
