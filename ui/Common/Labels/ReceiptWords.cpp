#include "ui/Common/Labels/ReceiptWords.h"

namespace quillon {

ReceiptWords receiptWords(const std::function<std::string(Label)>& text) {
  return {.receipt = text(Label::receipt),
          .doesNotHold = text(Label::doesNotHold),
          .identifier = text(Label::identifier),
          .madeOn = text(Label::madeOn),
          .madeBy = text(Label::madeBy),
          .newestEntry = text(Label::newestEntry),
          .dataSubject = text(Label::dataSubject),
          .purposes = text(Label::purposes),
          .accepted = text(Label::accepted),
          .rejected = text(Label::rejected),
          .noAnswer = text(Label::noAnswer),
          .unknownTime = text(Label::unknownTime),
          .notStated = text(Label::notStated),
          .controller = text(Label::controller),
          .recipients = text(Label::recipients),
          .personalData = text(Label::personalData),
          .legalBasis = text(Label::legalBasis),
          .jurisdiction = text(Label::jurisdiction),
          .storageLocation = text(Label::storageLocation),
          .retention = text(Label::retention),
          .withdrawal = text(Label::withdrawal),
          .rights = text(Label::dsrPortal),
          .contact = text(Label::contact),
          .address = text(Label::address),
          .notice = text(Label::privacyNotice),
          .notKept = text(Label::notKept),
          .language = text(Label::language),
          .details = text(Label::details)};
}

}  // namespace quillon
