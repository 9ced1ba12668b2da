import QtQuick
import Quillon.Consent

// Configured text with links.
Text {
    id: view

    required property RichTextAdapter content
    property color inkOfLinks: Style.colors.link
    // The line rectangles of each link.
    readonly property var places: content.links.length > 0 ? content.places(text, font, width, effectiveHorizontalAlignment, lineHeight) : []

    text: content.markup === "" ? "" : content.document(font, width, Style.language, inkOfLinks)
    textFormat: Text.RichText
    font: Style.body
    color: Style.colors.text
    wrapMode: Text.Wrap
    height: Pixels.up(implicitHeight, Screen.devicePixelRatio)
    horizontalAlignment: Text.AlignLeft
    lineHeight: 1.1
    visible: content.markup !== ""
    onLinkActivated: link => content.open(Number(link))

    Accessible.role: Accessible.StaticText
    // The text property contains markup.
    Accessible.name: content.plainText

    HoverHandler {
        enabled: view.hoveredLink !== ""
        cursorShape: Qt.PointingHandCursor
    }
    // Invisible items for keyboard and assistive technology, since links within a Text are in neither the focus chain
    // nor the accessibility tree.
    Repeater {
        model: view.content.links

        Pressable {
            id: link

            required property int index
            required property string modelData
            // qmllint disable unqualified
            readonly property var lines: view.places[index] ?? []
            readonly property rect place: lines.reduce((all, line) => Qt.rect(
                Math.min(all.x, line.x), all.y,
                Math.max(all.right, line.right) - Math.min(all.x, line.x), line.bottom - all.y), lines[0] ?? Qt.rect(0, 0, 0, 0))

            x: place.x
            y: place.y
            width: place.width
            height: place.height
            text: modelData
            // The bounding rectangle includes space beside the lines that belongs to other text.
            takesPointer: false
            onClicked: view.content.open(index)
            Accessible.role: Accessible.Link

            Repeater {
                model: link.lines

                Rectangle {
                    required property rect modelData

                    x: modelData.x - link.x - Style.metrics.ringWidth
                    y: modelData.y - link.y
                    width: modelData.width + 2 * Style.metrics.ringWidth
                    height: modelData.height
                    radius: Style.metrics.hairGap
                    color: "transparent"
                    border.width: Pixels.line(Style.metrics.ringWidth, Screen.devicePixelRatio)
                    border.pixelAligned: false
                    border.color: view.inkOfLinks
                    visible: link.visualFocus
            // qmllint enable unqualified
                }
            }
        }
    }
}
