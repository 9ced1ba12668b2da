import QtQuick
import Quillon.Consent

Rectangle {
    implicitHeight: Pixels.line(1, Screen.devicePixelRatio)
    color: Style.colors.hairline
}
