// A small news reader. Each part asks whether it may do what it does.
import QtQuick
import QtQuick.Layouts
import Quillon.Consent

Window {
    id: window

    required property var reader

    readonly property color ink: "#1B1F24"
    readonly property color faint: "#5B6470"
    readonly property color line: "#E3E6EA"

    width: 390
    height: 844
    visible: true
    color: "#FBFAF7"
    title: "The Morning Courier"

    component Story: ColumnLayout {
        property string section
        property string headline
        property string teaser

        Layout.fillWidth: true
        spacing: 6
        Text {
            text: parent.section
            color: "#9A3B26"
            font { pixelSize: 12; bold: true; letterSpacing: 0.6; capitalization: Font.AllUppercase }
        }
        Text {
            Layout.fillWidth: true
            text: parent.headline
            color: window.ink
            wrapMode: Text.Wrap
            font { pixelSize: 20; bold: true }
            Accessible.role: Accessible.Heading
        }
        Text {
            Layout.fillWidth: true
            text: parent.teaser
            color: window.faint
            wrapMode: Text.Wrap
            lineHeight: 1.3
            font.pixelSize: 15
        }
        Rectangle {
            Layout.fillWidth: true
            Layout.topMargin: 12
            implicitHeight: 1
            color: window.line
        }
    }

    component PrivacyButton: Rectangle {
        id: button

        property string text

        implicitWidth: label.implicitWidth + 32
        implicitHeight: 44
        radius: 22
        color: "transparent"
        border { color: activeFocus ? window.ink : window.line; width: activeFocus ? 2 : 1 }
        activeFocusOnTab: true
        Accessible.role: Accessible.Button
        Accessible.name: text
        Accessible.onPressAction: window.reader.openPrivacySettings()
        Keys.onSpacePressed: window.reader.openPrivacySettings()
        Keys.onReturnPressed: window.reader.openPrivacySettings()
        Text {
            id: label

            anchors.centerIn: parent
            text: button.text
            color: window.ink
            font.pixelSize: 14
        }
        TapHandler { onTapped: window.reader.openPrivacySettings() }
    }

    // Out of reach while a consent screen lies over it.
    HostPage {
        anchors.fill: parent

        Flickable {
            anchors.fill: parent
            contentHeight: page.implicitHeight + 48
            ColumnLayout {
                id: page

                x: Math.max(20, (parent.width - width) / 2)
                y: 24
                width: Math.min(window.width - 40, 640)
                spacing: 20

                RowLayout {
                    Text {
                        Layout.fillWidth: true
                        text: "The Morning Courier"
                        color: window.ink
                        wrapMode: Text.Wrap
                        font { pixelSize: 24; bold: true; family: "Noto Serif" }
                    }
                    PrivacyButton { text: "Privacy" }
                }
                Story {
                    section: "City"
                    headline: "Tram line 4 reopens after two summers of work"
                    teaser: "The new bridge carries its first passengers this morning. Stops are level with the pavement."
                }
                Story {
                    section: window.reader.personalises ? "For you" : "Most read"
                    headline: window.reader.personalises ? "Because you follow cycling: winter tyres, tested"
                                                         : "What a warm November means for the vineyards"
                    teaser: window.reader.personalises ? "Chosen from what you have read before."
                                                       : "The same for every reader, since nothing is known about you."
                }
                Rectangle {
                    Layout.fillWidth: true
                    implicitHeight: 180
                    radius: 12
                    color: window.reader.playsMedia ? window.ink : "#F0EEE8"
                    Text {
                        visible: window.reader.playsMedia
                        anchors.centerIn: parent
                        text: "\u25B6  The week in ninety seconds"
                        color: "white"
                        font.pixelSize: 16
                    }
                    ColumnLayout {
                        visible: !window.reader.playsMedia
                        anchors { fill: parent; margins: 20 }
                        spacing: 12
                        Text {
                            Layout.fillWidth: true
                            text: "This video comes from another company. It is loaded once you allow embedded media."
                            color: window.faint
                            wrapMode: Text.Wrap
                            font.pixelSize: 14
                        }
                        PrivacyButton { text: "Choose what to allow" }
                    }
                }
                Text {
                    Layout.fillWidth: true
                    text: window.reader.countsVisits ? "This visit is counted. Thank you." : "This visit is not counted."
                    color: window.faint
                    font.pixelSize: 13
                }
            }
        }
    }
}
