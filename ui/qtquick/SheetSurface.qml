import QtQuick
import Quillon.Consent

// What a sheet is written on.
Rectangle {
    id: surface

    property bool isFloating: false
    property color footColor: color

    radius: Style.metrics.sheetRadius
    color: Style.colors.background

    // A sheet at the bottom runs out of the window with its lower corners.
    Rectangle {
        anchors.bottom: parent.bottom
        width: parent.width
        height: surface.radius
        color: surface.footColor
        visible: !surface.isFloating
    }
}
