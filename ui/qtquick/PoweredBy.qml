import QtQuick
import Quillon.Consent

Text {
    // A name, the same in every language.
    text: "Powered by Quillon"
    textFormat: Text.PlainText
    font: Style.caption
    color: Style.colors.quietText
    horizontalAlignment: Text.AlignHCenter
    wrapMode: Text.Wrap
}
