import QtQuick
import Quillon.Consent

Item {
    implicitWidth: 32
    implicitHeight: 32
    Accessible.role: Accessible.Animation
    Accessible.name: "…"

    Icon {
        anchors.fill: parent
        shape: Icon.Arc
        color: Style.colors.quietText

        RotationAnimator on rotation {
            from: 0
            to: 360
            duration: 900
            loops: Animation.Infinite
            running: Style.duration > 0
        }
    }
}
