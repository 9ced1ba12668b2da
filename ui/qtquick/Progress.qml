import QtQuick
import Quillon.Consent

Item {
    id: progress

    required property string label

    implicitWidth: Style.metrics.sdkLogo
    implicitHeight: Style.metrics.sdkLogo
    Accessible.role: Accessible.Animation
    Accessible.name: label

    Icon {
        anchors.fill: parent
        shape: Icon.Arc
        color: Style.colors.quietText

        RotationAnimator on rotation {
            from: 0
            to: 360
            duration: 900
            loops: Animation.Infinite
            running: Style.duration > 0 && progress.visible
        }
    }
}
