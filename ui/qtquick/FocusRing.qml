import QtQuick
import Quillon.Consent

// Marks the control with keyboard focus.
Rectangle {
    required property bool isShown
    property real innerRadius: Style.metrics.smallRadius

    LayoutMirroring.enabled: false
    anchors.fill: parent
    anchors.margins: -Style.metrics.hairGap
    radius: innerRadius + Style.metrics.hairGap
    color: "transparent"
    border.width: Pixels.line(Style.metrics.ringWidth, Screen.devicePixelRatio)
    border.pixelAligned: false
    border.color: Style.colors.focus
    visible: isShown
}
