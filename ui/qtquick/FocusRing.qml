import QtQuick
import Quillon.Consent

// Around the control that the keyboard is at.
Rectangle {
    required property bool isShown
    property real innerRadius: 8

    LayoutMirroring.enabled: false
    anchors.fill: parent
    anchors.margins: -4
    radius: innerRadius + 4
    color: "transparent"
    border.width: 2
    border.color: Style.colors.focus
    visible: isShown
}
