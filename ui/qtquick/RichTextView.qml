import QtQuick
import Quillon.Consent

// A configured text with its links.
Text {
    id: view

    required property RichTextAdapter content
    property color inkOfLinks: Style.colors.link
    property int focusedLink: -1

    text: content.markup === "" ? "" : "<style>a { color: " + inkOfLinks + "; }"
          + (focusedLink < 0 ? "" : ".l" + focusedLink + " { background-color: " + Style.colors.linkHighlight + "; font-weight: 600; }")
          + "</style>" + content.markup
    textFormat: Text.RichText
    font: Style.body
    color: Style.colors.text
    wrapMode: Text.Wrap
    horizontalAlignment: Text.AlignLeft
    lineHeight: 1.1
    visible: content.markup !== ""
    onLinkActivated: link => content.open(Number(link))

    Accessible.role: Accessible.StaticText
    // The text itself has markup.
    Accessible.name: content.plainText

    HoverHandler {
        enabled: view.hoveredLink !== ""
        cursorShape: Qt.PointingHandCursor
    }
    // What the keyboard and assistive technology meet: the links within a Text are neither in the order of focus nor in
    // the tree.
    Repeater {
        model: view.content.links

        Item {
            required property int index
            required property string modelData

            anchors.fill: parent
            activeFocusOnTab: true
            onActiveFocusChanged: {
                if (activeFocus)
                    view.focusedLink = index
                else if (view.focusedLink === index)
                    view.focusedLink = -1
            }
            Keys.onReturnPressed: view.content.open(index)
            Keys.onEnterPressed: view.content.open(index)
            Keys.onSpacePressed: view.content.open(index)
            Accessible.role: Accessible.Link
            Accessible.name: modelData
            Accessible.focusable: true
            Accessible.onPressAction: view.content.open(index)
        }
    }
}
