import QtQuick
import Quillon.Consent

// What belongs together.
Rectangle {
    id: card

    default property alias content: column.data
    // Whether the last of its content is a control, which has room of its own.
    property bool endsInControl: false
    readonly property alias innerWidth: column.width
    property alias spacing: column.spacing

    implicitHeight: column.height + 2 * Style.metrics.largeGap - (endsInControl ? Style.metrics.gap : 0)
    radius: Style.metrics.cardRadius
    color: Style.colors.card
    border.width: 1
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
