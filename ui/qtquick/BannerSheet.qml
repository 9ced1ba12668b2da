import QtQuick
import Quillon.Consent

Sheet {
    id: screen

    required property ConsentBannerAdapter model

    // Not after a failed load, since there is nothing to answer; loading can be retried.
    readonly property bool hasAppeared: isOnScreen && !model.hasFailed

    banner: model
    title: model.name
    isBottom: !model.isCentered
    widest: isBottom ? Style.metrics.barWidth : Style.metrics.dialogWidth
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
        model: screen.model.answers
        hint: screen.model.activationHint
        onChosen: action => screen.model.perform(action)
    }
    smallPrint: [
        Flow {
            id: row
            width: parent.width
            visible: links.count > 0

            Repeater {
                id: links
                model: screen.model.links

                TextLink {
                    required property bannerControl modelData

                    text: modelData.text
                    // qmllint disable unqualified
                    hint: screen.model.activationHint
                    gapAfter: 2 * Style.metrics.gap
                    width: Math.min(implicitWidth, row.width)
                    onClicked: screen.model.perform(modelData.action)
                    // qmllint enable unqualified
                }
            }
        },
        PoweredBy {
            width: parent.width
            visible: screen.model.showsPoweredBy
        }
    ]
}
