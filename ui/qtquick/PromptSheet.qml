import QtQuick
import Quillon.Consent

Sheet {
    id: screen

    required property SettingsPromptAdapter model

    banner: model.banner
    title: model.name
    widest: Style.metrics.promptWidth
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
        model: screen.model.answers
        hint: screen.model.banner.activationHint
        onChosen: action => screen.model.perform(action)
    }
}
