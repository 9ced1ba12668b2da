import QtQuick
import Quillon.Consent

Sheet {
    id: screen

    required property SettingsPromptAdapter model

    banner: model.banner
    title: model.heading
    widest: 400
    isLoading: model.isLoading
    failure: model.failure
    onCloseRequested: model.close()
    onRetried: model.load()

    header: SheetHeader {
        width: parent.width
        banner: screen.model.banner
        heading: screen.model.heading
        hasLogo: false
        onClosed: screen.closeRequested()
    }

    RichTextView {
        width: parent.width
        content: screen.model.message
    }

    footer: AnswerRow {
        width: parent.width
        answers: screen.model.hasFailed ? [] : [{ text: screen.model.notNowButton, action: 0 }, { text: screen.model.settingsButton, action: 1 }]
        hint: screen.model.banner.activationHint
        visible: answers.length > 0
        onChosen: action => action === 1 ? screen.model.openSettings() : screen.model.notNow()
    }
}
