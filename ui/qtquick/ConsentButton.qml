import QtQuick
import Quillon.Consent

// A button in the configured shape. All buttons of a row look the same, so none is more prominent.
Pressable {
    id: control

    // A secondary button beside a list, of lower prominence.
    property bool isQuiet: false
    readonly property bool isOutlined: Style.buttonShape === Style.Outlined
    readonly property bool isFilled: !isQuiet && !isOutlined && Style.buttonShape !== Style.Edgeless
    readonly property color ink: isFilled ? Style.colors.buttonText : Style.colors.plainButtonText
    readonly property int sidePadding: isQuiet ? Style.metrics.gap : 20
    readonly property real cornerRadius: {
        switch (Style.buttonShape) {
        case Style.Square: return 0
        case Style.Pill: return Math.min(height / 2, Style.metrics.pillRadius)
        default: return Style.metrics.radius
        }
    }

    implicitWidth: Words.lineOf(text, font) + 2 * sidePadding
    implicitHeight: Math.max(isQuiet ? Style.metrics.target : Style.metrics.answer, words.height + (isQuiet ? Style.metrics.largeGap : 24))

    Rectangle {
        anchors.fill: parent
        radius: control.cornerRadius
        color: control.isFilled ? Style.colors.button : control.isOutlined ? "transparent" : Style.colors.plainButton
        border.width: control.isOutlined || control.isFilled ? Pixels.line(control.isOutlined ? Style.metrics.ringWidth : 1, Screen.devicePixelRatio) : 0
        border.pixelAligned: false
        border.color: control.isOutlined ? Style.colors.plainButtonBorder : Style.colors.buttonBorder

        Rectangle {
            anchors.fill: parent
            radius: control.cornerRadius
            color: control.ink
            opacity: control.pressed ? 0.16 : control.hovered ? 0.08 : 0
        }
        FocusRing {
            isShown: control.visualFocus
            innerRadius: control.cornerRadius
        }
    }
    PlainText {
        id: words
        anchors.centerIn: parent
        width: parent.width - 2 * control.sidePadding
        words: control.text
        font: control.font
        color: control.ink
        horizontalAlignment: Text.AlignHCenter
        Accessible.ignored: true
    }
}
