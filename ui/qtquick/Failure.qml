import QtQuick
import Quillon.Consent

// Shown instead of content that cannot be loaded.
Column {
    id: failure

    required property ConsentBannerAdapter banner
    property string text
    property bool isCentered: false
    signal retried

    spacing: Style.metrics.smallGap
    visible: text !== ""

    PlainText {
        width: parent.width
        words: failure.text
        horizontalAlignment: failure.isCentered ? Text.AlignHCenter : Text.AlignLeft
        Accessible.role: Accessible.AlertMessage
    }
    TextLink {
        id: retry
        anchors.left: failure.isCentered ? undefined : parent.left
        anchors.horizontalCenter: failure.isCentered ? parent.horizontalCenter : undefined
        text: failure.banner.refreshLabel
        hint: failure.banner.activationHint
        width: Math.min(implicitWidth, parent.width)
        onClicked: failure.retried()
        Accessible.role: Accessible.Button
        // A screen reader announces a message only if it belongs to the focused item.
        Accessible.description: failure.text
    }
}
