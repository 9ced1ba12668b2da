import QtQuick
import Quillon.Consent

// Shows a state of the model and only asks for another one, so it never shows what is not so. One that cannot be
// switched can be tapped all the same, and is then explained.
Pressable {
    id: control

    property bool isOn: false
    property bool isSwitchable: true

    implicitWidth: 56
    implicitHeight: 44
    Accessible.role: Accessible.CheckBox
    Accessible.checkable: true
    Accessible.checked: isOn
    Accessible.onToggleAction: clicked()

    Rectangle {
        id: track
        anchors.centerIn: parent
        width: 52
        height: 32
        radius: 16
        color: control.isOn ? Style.colors.switchOn : Style.colors.switchOff
        opacity: control.isSwitchable ? 1 : 0.55
    }
    Rectangle {
        readonly property bool isAtEnd: control.isOn !== Style.isMirrored

        y: track.y + 4
        x: track.x + (isAtEnd ? track.width - width - 4 : 4)
        width: 24
        height: 24
        radius: 12
        color: Style.colors.background

        Behavior on x {
            enabled: Style.duration > 0
            NumberAnimation { duration: Style.duration; easing.type: Easing.OutCubic }
        }
        // The state is told by more than the colour.
        Icon {
            anchors.centerIn: parent
            width: 14
            height: 14
            shape: !control.isSwitchable ? Icon.Lock : control.isOn ? Icon.Check : Icon.Cross
            color: control.isOn ? Style.colors.switchOn : Style.colors.switchOff
        }
    }
    FocusRing {
        isShown: control.visualFocus
        anchors.fill: track
        innerRadius: 16
    }
}
