import QtQuick
import Quillon.Consent

// Shows or hides the content after it.
Pressable {
    id: control

    property bool isExpanded: false

    implicitWidth: Words.lineOf(text, font) + Style.metrics.hairGap + chevron.width
    implicitHeight: Math.max(Style.metrics.target, label.height + Style.metrics.largeGap)

    PlainText {
        id: label
        anchors.left: parent.left
        anchors.verticalCenter: parent.verticalCenter
        width: parent.width - Style.metrics.hairGap - chevron.width
        words: control.text
        font: control.font
        color: Style.colors.link
        Accessible.ignored: true
    }
    Icon {
        id: chevron
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        width: Style.metrics.icon
        height: width
        shape: Icon.ChevronDown
        color: Style.colors.link
        rotation: control.isExpanded ? 180 : 0

        Behavior on rotation {
            enabled: Style.duration > 0
            NumberAnimation { duration: Style.duration }
        }
    }
    FocusRing {
        isShown: control.visualFocus
        anchors.topMargin: Style.metrics.hairGap
        anchors.bottomMargin: Style.metrics.hairGap
    }
}
