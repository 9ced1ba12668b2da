import QtQuick
import Quillon.Consent

Pressable {
    id: control

    property int shape: Icon.Cross

    implicitWidth: Style.metrics.target
    implicitHeight: Style.metrics.target

    Rectangle {
        anchors.centerIn: parent
        width: Style.metrics.roundButton
        height: width
        radius: width / 2
        color: Qt.tint(Style.colors.background, Qt.alpha(Style.colors.text, control.pressed ? 0.16 : control.hovered ? 0.1 : 0.06))

        Icon {
            anchors.centerIn: parent
            width: Style.metrics.icon
            height: width
            shape: control.shape
            color: Style.colors.quietText
            opacity: control.enabled ? 1 : 0.4
        }
        FocusRing {
            isShown: control.visualFocus
            innerRadius: parent.radius
        }
    }
}
