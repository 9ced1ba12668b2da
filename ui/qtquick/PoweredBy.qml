import QtQuick
import Quillon.Consent

PlainText {
    // A name, not translated.
    words: "Powered by Quillon"
    font: Style.caption
    color: Style.colors.quietText
    horizontalAlignment: Text.AlignHCenter
}
