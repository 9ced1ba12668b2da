import QtQuick
import Quillon.Consent

Pressable {
    id: control

    property int shape: Icon.Cross

    implicitWidth: 44
    implicitHeight: 44

    Rectangle {
        anchors.centerIn: parent
        width: 36
        height: 36
        radius: 18
        color: Qt.tint(Style.colors.background, Qt.alpha(Style.colors.text, control.pressed ? 0.16 : control.hovered ? 0.1 : 0.06))

        Icon {
            anchors.centerIn: parent
            width: 20
            height: 20
            shape: control.shape
            color: Style.colors.quietText
            opacity: control.enabled ? 1 : 0.4
        }
        FocusRing {
            isShown: control.visualFocus
            innerRadius: 18
        }
    }
}
