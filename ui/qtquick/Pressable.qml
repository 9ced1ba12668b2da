import QtQuick
import Quillon.Consent

// The base of our controls: pointer, keyboard and assistive technology have the same effect. Buttons of Qt Quick
// Templates would not allow another accessible role.
Item {
    id: control

    property string text
    property font font: Style.label
    property string hint
    // The Tab key's next item, if it is not the next control.
    property Item following: null
    property bool takesPointer: true
    property bool isFocusedByPointer: false
    readonly property bool pressed: area.pressed
    readonly property bool hovered: area.containsMouse
    readonly property bool visualFocus: activeFocus && !isFocusedByPointer
    signal clicked

    // Assistive technology may still refer to a covered or closing control.
    function press() {
        if (enabled)
            clicked()
    }
    // Ignores auto-repeat.
    function pressByKey(event) {
        if (!event.isAutoRepeat)
            press()
    }

    activeFocusOnTab: true
    Accessible.role: Accessible.Button
    Accessible.name: text
    Accessible.description: hint
    Accessible.focusable: true
    Accessible.onPressAction: press()
    Keys.onReturnPressed: event => pressByKey(event)
    Keys.onEnterPressed: event => pressByKey(event)
    Keys.onSpacePressed: event => pressByKey(event)
    Keys.onTabPressed: event => {
        event.accepted = following !== null
        if (event.accepted)
            following.forceActiveFocus(Qt.TabFocusReason)
    }
    onActiveFocusChanged: if (!activeFocus) isFocusedByPointer = false

    MouseArea {
        id: area
        anchors.fill: parent
        enabled: control.takesPointer
        hoverEnabled: true
        cursorShape: Qt.PointingHandCursor
        onPressed: {
            control.isFocusedByPointer = true
            control.forceActiveFocus(Qt.MouseFocusReason)
        }
        onClicked: control.press()
    }
}
