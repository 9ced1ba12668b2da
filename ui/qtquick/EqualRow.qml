import QtQuick
import Quillon.Consent

// Controls of equal prominence and equal size: side by side if all fit, otherwise stacked.
Grid {
    id: row

    property alias model: controls.model
    // A control with an implicit size; all get the largest one.
    property alias delegate: controls.delegate
    readonly property alias count: controls.count
    property var made: []

    // The width of one control when side by side.
    readonly property real share: Pixels.down((width - columnSpacing * (count - 1)) / Math.max(1, count), Screen.devicePixelRatio)
    readonly property bool isRow: made.every(control => control.implicitWidth <= share)
    readonly property real cellWidth: isRow ? share : width
    readonly property real cellHeight: Math.max(0, ...made.map(control => control.implicitHeight))

    function at(index: int): Item {
        return controls.itemAt(index)
    }

    columns: isRow ? Math.max(1, count) : 1
    columnSpacing: Style.metrics.gap
    rowSpacing: Style.metrics.smallGap

    Repeater {
        id: controls

        onItemAdded: (index, item) => row.made = row.made.concat(item)
        onItemRemoved: (index, item) => row.made = row.made.filter(other => other !== item)
    }
}
