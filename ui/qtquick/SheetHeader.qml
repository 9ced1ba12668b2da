import QtQuick
import Quillon.Consent

// Logo, heading and close button; only the button while there is no content.
Item {
    id: header

    required property ConsentBannerAdapter banner
    property string heading
    property bool canClose: true
    property bool hasLogo: true
    signal closed

    readonly property bool isBare: banner.isLoading || banner.hasFailed
    readonly property bool showsLogo: hasLogo && banner.logo.exists && !isBare
    // A wide logo, such as a word mark, takes up to two fifths of the line.
    readonly property real widestLogo: Math.max(Style.metrics.logo, Math.min(Style.metrics.widestLogo, width * 0.4))
    readonly property real besideLogo: showsLogo ? picture.width + Style.metrics.gap : 0
    readonly property real besideButton: canClose ? button.width + Style.metrics.hairGap : 0
    readonly property real firstLine: Math.max(canClose ? button.height : 0, showsLogo ? picture.height : 0)
    // A word that does not fit between logo and button gets the full width; if that is not enough, it shrinks.
    readonly property bool isStacked: title.longestWord > width - besideLogo - besideButton && (canClose || showsLogo)

    implicitHeight: Math.max(firstLine, title.visible ? title.height + title.y : 0)

    Picture {
        id: picture
        anchors.left: parent.left
        y: (header.firstLine - height) / 2
        width: Math.max(Style.metrics.logo, Math.min(header.widestLogo, Style.metrics.logo * header.banner.logo.aspect))
        height: Style.metrics.logo
        source: header.banner.logo
        visible: header.showsLogo
        Accessible.role: Accessible.Graphic
        Accessible.name: header.banner.logoLabel
    }
    Heading {
        id: title
        anchors.left: parent.left
        anchors.leftMargin: header.isStacked ? 0 : header.besideLogo
        anchors.right: parent.right
        anchors.rightMargin: header.isStacked ? 0 : header.besideButton
        // A one-line heading is vertically centred on logo and button.
        y: header.isStacked ? header.firstLine + Style.metrics.smallGap : Math.max(0, (header.firstLine - implicitHeight) / 2)
        words: header.isBare ? "" : header.heading
        visible: header.heading !== "" && !header.isBare
    }
    IconButton {
        id: button
        anchors.right: parent.right
        anchors.rightMargin: -Style.metrics.hairGap
        text: header.banner.closeLabel
        hint: header.banner.activationHint
        visible: header.canClose
        onClicked: header.closed()
    }
}
