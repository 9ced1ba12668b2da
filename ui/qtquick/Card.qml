import QtQuick
import Quillon.Consent

// A group of related items.
Rectangle {
    id: card

    default property alias content: column.data
    // Whether the last item is a control, which has its own padding.
    property bool endsInControl: false
    readonly property alias innerWidth: column.width
    property alias spacing: column.spacing

    implicitHeight: column.height + 2 * Style.metrics.largeGap - (endsInControl ? Style.metrics.gap : 0)
    radius: Style.metrics.cardRadius
    color: Style.colors.card
    border.width: Pixels.line(1, Screen.devicePixelRatio)
    border.pixelAligned: false
    border.color: Style.colors.hairline
    Accessible.role: Accessible.Grouping

    Column {
        id: column
        x: Style.metrics.largeGap
        y: Style.metrics.largeGap
        width: parent.width - 2 * Style.metrics.largeGap
        spacing: Style.metrics.smallGap
    }
}
