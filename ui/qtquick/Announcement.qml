import QtQuick
import Quillon.Consent

// A message that appears over the content for a while.
Rectangle {
    id: bar

    property string text

    function show(message) {
        text = message
        lifetime.restart()
    }

    implicitHeight: words.implicitHeight + 24
    radius: 12
    color: Style.colors.text
    opacity: text === "" ? 0 : 1
    visible: opacity > 0

    Behavior on opacity {
        enabled: Style.duration > 0
        NumberAnimation { duration: Style.duration }
    }
    Accessible.role: Accessible.AlertMessage
    Accessible.name: text
    Accessible.ignored: text === ""

    Text {
        id: words
        x: 16
        y: 12
        width: parent.width - 32
        text: bar.text
        textFormat: Text.PlainText
        font: Style.body
        color: Style.colors.background
        wrapMode: Text.Wrap
        horizontalAlignment: Text.AlignLeft
        Accessible.ignored: true
    }
    Timer {
        id: lifetime
        interval: 6000
        onTriggered: bar.text = ""
    }
}
