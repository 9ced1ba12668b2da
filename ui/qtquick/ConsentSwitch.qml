import QtQuick
import Quillon.Consent

// Shows the model's state and only requests changes, so it never shows a state that is not in effect. Tapping a
// disabled switch requests an explanation.
Pressable {
    id: control

    property bool isOn: false
    property bool isSwitchable: true
    readonly property color ink: isOn ? Style.colors.switchOn : Style.colors.switchOff
    // The space beside the track.
    readonly property real side: Pixels.up(Style.metrics.ringWidth, Screen.devicePixelRatio)

    implicitWidth: Style.metrics.switchWidth + 2 * side
    implicitHeight: Math.max(Style.metrics.target, Style.metrics.switchHeight)
    Accessible.role: Accessible.CheckBox
    Accessible.checkable: true
    Accessible.checked: isOn
    Accessible.onToggleAction: press()

    Rectangle {
        id: track
        x: control.side
        y: Pixels.down((parent.height - height) / 2, Screen.devicePixelRatio)
        width: Style.metrics.switchWidth
        height: Style.metrics.switchHeight
        radius: height / 2
        color: control.isSwitchable ? control.ink : "transparent"
        border.width: Pixels.line(Style.metrics.ringWidth, Screen.devicePixelRatio)
        border.pixelAligned: false
        border.color: control.ink
    }
    Rectangle {
        readonly property bool isAtEnd: control.isOn !== Style.isMirrored

        y: track.y + Style.metrics.hairGap
        x: track.x + (isAtEnd ? track.width - width - Style.metrics.hairGap : Style.metrics.hairGap)
        width: track.height - 2 * Style.metrics.hairGap
        height: width
        radius: width / 2
        color: control.isSwitchable ? Style.colors.background : control.ink

        Behavior on x {
            enabled: Style.duration > 0
            NumberAnimation { duration: Style.duration; easing.type: Easing.OutCubic }
        }
        // Indicates the state not by colour alone.
        Icon {
            anchors.centerIn: parent
            width: parent.width * 0.6
            height: width
            shape: !control.isSwitchable ? Icon.Lock : control.isOn ? Icon.Check : Icon.Cross
            color: control.isSwitchable ? control.ink : Style.colors.background
        }
    }
    FocusRing {
        isShown: control.visualFocus
        anchors.fill: track
        innerRadius: track.radius
    }
}
