// A small news reader. Each part asks whether it may do what it does.
import QtQuick
import QtQuick.Layouts
import Quillon.Consent

Window {
    id: window

    width: 390
    height: 844
    visible: true
    color: "#FBFAF7"
    title: "The Morning Courier"

    PurposeConsent { id: statistics; purposeId: 2 }
    PurposeConsent { id: personalised; purposeId: 3 }
    PurposeConsent { id: media; purposeId: 5 }

    component Ink: QtObject {
        readonly property color plain: "#1B1F24"
        readonly property color faint: "#5B6470"
        readonly property color line: "#E3E6EA"
    }

    Ink { id: pageInk }

    component Story: ColumnLayout {
        id: story

        property string section
        property string headline
        property string teaser

        Layout.fillWidth: true
        spacing: 6

        Ink { id: storyInk }
        Text {
            text: story.section
            color: "#9A3B26"
            font { pixelSize: 12; bold: true; letterSpacing: 0.6; capitalization: Font.AllUppercase }
        }
        Text {
            Layout.fillWidth: true
            text: story.headline
            color: storyInk.plain
            wrapMode: Text.Wrap
            font { pixelSize: 20; bold: true }
            Accessible.role: Accessible.Heading
        }
        Text {
            Layout.fillWidth: true
            text: story.teaser
            color: storyInk.faint
            wrapMode: Text.Wrap
            lineHeight: 1.3
            font.pixelSize: 15
        }
        Rectangle {
            Layout.fillWidth: true
            Layout.topMargin: 12
            implicitHeight: 1
            color: storyInk.line
        }
    }

    component PrivacyButton: Rectangle {
        id: button

        property string text

        implicitWidth: label.implicitWidth + 32
        implicitHeight: 44
        radius: 22
        color: "transparent"
        border { color: activeFocus ? buttonInk.plain : buttonInk.line; width: activeFocus ? 2 : 1 }
        activeFocusOnTab: true
        Accessible.role: Accessible.Button
        Accessible.name: text
        Accessible.onPressAction: Consent.presentPreferenceCenter()
        Keys.onSpacePressed: Consent.presentPreferenceCenter()
        Keys.onReturnPressed: Consent.presentPreferenceCenter()
        Ink { id: buttonInk }
        Text {
            id: label

            anchors.centerIn: parent
            text: button.text
            color: buttonInk.plain
            font.pixelSize: 14
        }
        TapHandler { onTapped: Consent.presentPreferenceCenter() }
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
                        color: pageInk.plain
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
                    section: personalised.allowed ? "For you" : "Most read"
                    headline: personalised.allowed ? "Because you follow cycling: winter tyres, tested"
                                                         : "What a warm November means for the vineyards"
                    teaser: personalised.allowed ? "Chosen from what you have read before."
                                                       : "The same for every reader, since nothing is known about you."
                }
                Rectangle {
                    Layout.fillWidth: true
                    implicitHeight: 180
                    radius: 12
                    color: media.allowed ? pageInk.plain : "#F0EEE8"
                    Text {
                        visible: media.allowed
                        anchors.centerIn: parent
                        text: "\u25B6  The week in ninety seconds"
                        color: "white"
                        font.pixelSize: 16
                    }
                    ColumnLayout {
                        visible: !media.allowed
                        anchors { fill: parent; margins: 20 }
                        spacing: 12
                        Text {
                            Layout.fillWidth: true
                            text: "This video comes from another company. It is loaded once you allow embedded media."
                            color: pageInk.faint
                            wrapMode: Text.Wrap
                            font.pixelSize: 14
                        }
                        PrivacyButton { text: "Choose what to allow" }
                    }
                }
                Text {
                    Layout.fillWidth: true
                    text: statistics.allowed ? "This visit is counted. Thank you." : "This visit is not counted."
                    color: pageInk.faint
                    font.pixelSize: 13
                }
            }
        }
    }
}
