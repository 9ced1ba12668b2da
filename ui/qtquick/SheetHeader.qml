import QtQuick
import Quillon.Consent

// The logo, the heading and the way out; only that while there is nothing below to head.
Item {
    id: header

    required property ConsentBannerAdapter banner
    property string heading
    property bool canClose: true
    property bool hasLogo: true
    signal closed

    readonly property bool isBare: banner.isLoading || banner.hasFailed
    readonly property bool showsLogo: hasLogo && banner.logo.exists && !isBare
    readonly property real widthBeside: width - (showsLogo ? 52 : 0) - (canClose ? 48 : 0)
    // A word that does not fit between the logo and the button has the whole width, and shrinks when that is not enough.
    readonly property bool isStacked: words.longestWord > widthBeside && (canClose || showsLogo)

    implicitHeight: Math.max(canClose ? 44 : 0, showsLogo ? 40 : 0, words.implicitHeight + words.y)

    Picture {
        id: picture
        anchors.left: parent.left
        y: 2
        width: 40
        height: 40
        source: header.banner.logo
        visible: header.showsLogo
        Accessible.role: Accessible.Graphic
        Accessible.name: header.banner.logoLabel
    }
    FittedText {
        id: words
        anchors.left: parent.left
        anchors.leftMargin: header.showsLogo && !header.isStacked ? 52 : 0
        anchors.right: parent.right
        anchors.rightMargin: header.canClose && !header.isStacked ? 48 : 0
        // A heading of one line stands in the middle of the logo and the button.
        y: header.isStacked ? 52 : header.canClose || header.showsLogo ? Math.max(0, (44 - implicitHeight) / 2) : 0
        text: header.isBare ? "" : header.heading
        wanted: Style.heading
        visible: text !== ""
    }
    IconButton {
        id: button
        anchors.right: parent.right
        anchors.rightMargin: -4
        text: header.banner.closeLabel
        hint: header.banner.activationHint
        visible: header.canClose
        onClicked: header.closed()
    }
}
