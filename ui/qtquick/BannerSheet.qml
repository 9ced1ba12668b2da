import QtQuick
import Quillon.Consent

Sheet {
    id: screen

    required property ConsentBannerAdapter model

    // Not while there is nothing to answer: the load may be tried again.
    readonly property bool hasAppeared: isOnScreen && !model.hasFailed

    banner: model
    title: model.heading
    isBottom: !model.isCentered
    widest: isBottom ? 720 : 480
    isLoading: model.isLoading
    canClose: model.canClose || model.hasFailed
    failure: model.failure
    onCloseRequested: model.close()
    onRetried: model.load()
    onHasAppearedChanged: if (hasAppeared) model.appeared()

    header: SheetHeader {
        width: parent.width
        banner: screen.model
        heading: screen.model.heading
        canClose: screen.canClose
        onClosed: screen.closeRequested()
    }

    RichTextView {
        width: parent.width
        content: screen.model.text
    }

    footer: AnswerRow {
        width: parent.width
        answers: screen.model.hasFailed ? [] : screen.model.answers
        hint: screen.model.activationHint
        visible: answers.length > 0
        onChosen: action => screen.model.perform(action)
    }
    smallPrint: [
        Flow {
            width: parent.width
            visible: links.count > 0

            Repeater {
                id: links
                model: screen.model.links

                TextLink {
                    required property var modelData

                    text: modelData.text
                    hint: screen.model.activationHint
                    gapAfter: 24
                    width: Math.min(implicitWidth, parent ? parent.width : implicitWidth)
                    onClicked: screen.model.perform(modelData.action)
                }
            }
        },
        PoweredBy {
            width: parent.width
            visible: screen.model.showsPoweredBy
        }
    ]
}
