import QtQuick
import Quillon.Consent

// A temporary message, laid out so that it covers nothing.
Item {
    id: bar

    property string text
    signal ended

    function show(message: string) {
        text = message
        lifetime.restart()
    }

    implicitHeight: visible ? box.height + Style.metrics.smallGap : 0
    visible: text !== ""
    Accessible.role: Accessible.AlertMessage
    Accessible.name: text
    Accessible.ignored: text === ""

    Rectangle {
        id: box
        width: parent.width
        height: words.implicitHeight + 2 * Style.metrics.gap
        radius: Style.metrics.radius
        color: Style.colors.text

        PlainText {
            id: words
            x: Style.metrics.largeGap
            y: Style.metrics.gap
            width: parent.width - 2 * Style.metrics.largeGap
            words: bar.text
            color: Style.colors.background
            Accessible.ignored: true
        }
    }
    Timer {
        id: lifetime
        interval: Style.messageTime
        onTriggered: {
            bar.text = ""
            bar.ended()
        }
    }
}
