import QtQuick
import Quillon.Consent

// What every control of ours is made of: pointer, keyboard and assistive technology do the same. The buttons of
// Qt Quick Templates would take away any other role than their own.
Item {
    id: control

    property string text
    property font font: Style.label
    property string hint
    property bool isFocusedByPointer: false
    readonly property bool pressed: area.pressed
    readonly property bool hovered: area.containsMouse
    readonly property bool visualFocus: activeFocus && !isFocusedByPointer
    signal clicked

    activeFocusOnTab: true
    Accessible.role: Accessible.Button
    Accessible.name: text
    Accessible.description: hint
    Accessible.focusable: true
    Accessible.onPressAction: clicked()
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()
    Keys.onSpacePressed: clicked()
    onActiveFocusChanged: if (!activeFocus) isFocusedByPointer = false

    MouseArea {
        id: area
        anchors.fill: parent
        hoverEnabled: true
        onPressed: {
            control.isFocusedByPointer = true
            control.forceActiveFocus(Qt.MouseFocusReason)
        }
        onClicked: control.clicked()
    }
}
