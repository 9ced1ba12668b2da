import QtQuick
import Quillon.Consent

PlainText {
    // A name, the same in every language.
    words: "Powered by Quillon"
    font: Style.caption
    color: Style.colors.quietText
    horizontalAlignment: Text.AlignHCenter
}
