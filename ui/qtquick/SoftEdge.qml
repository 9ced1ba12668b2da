import QtQuick

// The shadow of a floating sheet.
Item {
    id: edge

    property real radius: 0

    Repeater {
        model: 3

        Rectangle {
            required property int index

            anchors.fill: parent
            anchors.margins: -2 * (index + 1)
            // qmllint disable unqualified
            radius: edge.radius + 2 * (index + 1)
            // qmllint enable unqualified
            color: "transparent"
            border.width: 2
            border.color: Qt.rgba(0, 0, 0, 0.1 - index * 0.03)
        }
    }
}
