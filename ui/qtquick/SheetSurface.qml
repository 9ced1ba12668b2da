import QtQuick
import Quillon.Consent

// A sheet's background.
Rectangle {
    id: surface

    property bool isFloating: false
    property color footColor: color

    radius: Style.metrics.sheetRadius
    color: Style.colors.background

    // A bottom sheet's lower corners are outside the window.
    Rectangle {
        anchors.bottom: parent.bottom
        width: parent.width
        height: surface.radius
        color: surface.footColor
        visible: !surface.isFloating
    }
}
