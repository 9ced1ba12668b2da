import QtQuick
import Quillon.Consent

Rectangle {
    implicitHeight: 1
    color: Style.colors.hairline
}
