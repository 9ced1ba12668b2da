import QtQuick
import Quillon.Consent

// A button in the configured shape. All of one screen look alike: none is more prominent than another.
Pressable {
    id: control

    readonly property bool isFilled: Style.buttonShape !== Style.Outlined && Style.buttonShape !== Style.Edgeless
    readonly property color ink: isFilled ? Style.colors.buttonText : Style.colors.plainButtonText
    readonly property real cornerRadius: {
        switch (Style.buttonShape) {
        case Style.Square: return 0
        case Style.Pill: return Math.min(height / 2, 32)
        default: return 12
        }
    }

    readonly property alias fittingTextSize: words.fittingSize
    property alias textSize: words.size

    implicitWidth: words.lineWidth + 40
    implicitHeight: Math.max(48, words.implicitHeight + 24)

    Rectangle {
        anchors.fill: parent
        radius: control.cornerRadius
        color: {
            switch (Style.buttonShape) {
            case Style.Outlined: return "transparent"
            case Style.Edgeless: return Style.colors.plainButton
            default: return Style.colors.button
            }
        }
        border.width: Style.buttonShape === Style.Edgeless ? 0 : Style.buttonShape === Style.Outlined ? 2 : 1
        border.color: Style.buttonShape === Style.Outlined ? Style.colors.plainButtonText : Style.colors.buttonBorder

        Rectangle {
            anchors.fill: parent
            radius: parent.radius
            color: control.ink
            opacity: control.pressed ? 0.16 : control.hovered ? 0.08 : 0
        }
        FocusRing {
            isShown: control.visualFocus
            innerRadius: control.cornerRadius
        }
    }
    FittedText {
        id: words
        anchors.centerIn: parent
        width: parent.width - 40
        text: control.text
        wanted: control.font
        color: control.ink
        horizontalAlignment: Text.AlignHCenter
        Accessible.ignored: true
    }
}
