import QtQuick
import Quillon.Consent

// What takes the place of a content that cannot be loaded.
Column {
    id: failure

    required property ConsentBannerAdapter banner
    property string text
    property bool isCentered: false
    signal retried

    spacing: 8
    visible: text !== ""

    Text {
        width: parent.width
        text: failure.text
        textFormat: Text.PlainText
        font: Style.body
        color: Style.colors.text
        wrapMode: Text.Wrap
        horizontalAlignment: failure.isCentered ? Text.AlignHCenter : Text.AlignLeft
        Accessible.role: Accessible.StaticText
        Accessible.name: text
    }
    TextLink {
        anchors.left: failure.isCentered ? undefined : parent.left
        anchors.horizontalCenter: failure.isCentered ? parent.horizontalCenter : undefined
        text: failure.banner.refreshLabel
        hint: failure.banner.activationHint
        width: Math.min(implicitWidth, parent.width)
        onClicked: failure.retried()
        Accessible.role: Accessible.Button
    }
}
