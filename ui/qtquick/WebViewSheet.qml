import QtQuick
import Quillon.Consent

// A web page, with title and host above, and navigation below.
Sheet {
    id: screen

    required property WebViewAdapter model

    // In the page, Tab moves between links; at its ends the page passes the focus on.
    readonly property bool keepsTabKey: place.activeFocus

    banner: model.banner
    title: model.title
    isBottom: isNarrow
    fillsHeight: true
    widest: Style.metrics.pageWidth
    onCloseRequested: model.close()
    onShownChanged: if (shown === 1 && !isLeaving) model.appeared()

    header: Item {
        width: parent.width
        implicitHeight: Math.max(closeButton.height, titles.implicitHeight)

        Column {
            id: titles
            anchors.left: parent.left
            anchors.right: closeButton.left
            anchors.rightMargin: Style.metrics.smallGap
            anchors.verticalCenter: parent.verticalCenter

            PlainText {
                width: parent.width
                words: screen.model.title
                font: Style.subHeading
                maximumLineCount: 2
                elide: Text.ElideRight
                Accessible.role: Accessible.Heading
            }
            PlainText {
                width: parent.width
                words: screen.model.host
                font: Style.caption
                color: Style.colors.quietText
                wrapMode: Text.NoWrap
                // Elides at the start, since the end of a host name identifies its owner.
                elide: Text.ElideLeft
                visible: screen.model.host !== ""
            }
        }
        IconButton {
            id: closeButton
            anchors.right: parent.right
            anchors.rightMargin: -Style.metrics.hairGap
            text: screen.model.banner.closeLabel
            hint: screen.model.banner.activationHint
            onClicked: screen.closeRequested()
        }
    }

    page: [
        FocusScope {
            id: place

            readonly property Item content: screen.model.page

            anchors.fill: parent
            onContentChanged: {
                if (!content)
                    return
                content.parent = place
                content.anchors.fill = place
                content.focus = true
            }
            // Keys that the page does not handle.
            Keys.onEscapePressed: screen.closeRequested()
        },
        Rectangle {
            width: parent.width * screen.model.progress
            // The header's border overlaps it.
            height: Style.metrics.hairGap
            anchors.left: parent.left
            color: Style.colors.switchOn
            visible: screen.model.isLoading
            Accessible.role: Accessible.ProgressBar
            Accessible.name: screen.model.title
        }
    ]

    footer: [
        Item {
            width: parent.width
            implicitHeight: Style.metrics.target

            // Aligned with the text above.
            Row {
                anchors.left: parent.left
                anchors.leftMargin: -Style.metrics.hairGap
                spacing: Style.metrics.smallGap

                IconButton {
                    shape: Style.isMirrored ? Icon.ChevronForward : Icon.ChevronBackward
                    text: screen.model.backLabel
                    hint: screen.model.banner.activationHint
                    enabled: screen.model.canGoBack
                    onClicked: screen.model.goBack()
                }
                IconButton {
                    shape: Style.isMirrored ? Icon.ChevronBackward : Icon.ChevronForward
                    text: screen.model.forwardLabel
                    hint: screen.model.banner.activationHint
                    enabled: screen.model.canGoForward
                    onClicked: screen.model.goForward()
                }
            }
            IconButton {
                anchors.right: parent.right
                anchors.rightMargin: -Style.metrics.hairGap
                shape: Icon.Refresh
                text: screen.model.banner.refreshLabel
                hint: screen.model.banner.activationHint
                onClicked: screen.model.refreshPage()
            }
        }
    ]
}
