#include "ui/qtquick/ReceiptAdapter.h"

#include "ui/qtquick/PurposeAdapter.h"

namespace quillon {

ReceiptAdapter::ReceiptAdapter(const ConsentBannerAdapter& banner, QObject* parent)
    : Adapter(parent), banner_(banner), model_(ReceiptViewModel::make(banner.model())) {
  follow(model_->lines);
  follow(model_->saving);
  follow(banner.model()->bannerConfigResult);
}

QString ReceiptAdapter::saving() const {
  using Saving = ReceiptViewModel::Saving;
  switch (model_->saving.get()) {
    case Saving::notAsked:
      return {};
    case Saving::choosing:
      return banner_.label(Label::choosingFile);
    case Saving::saved:
      return banner_.label(Label::receiptSaved);
    case Saving::cancelled:
      return banner_.label(Label::receiptSaveCancelled);
    case Saving::unavailable:
      return banner_.label(Label::fileDialogUnavailable);
    case Saving::failed:
      break;
  }
  return banner_.label(Label::receiptNotSaved);
}

// Keeps the lines until they change, so that saving a file does not redraw them.
void ReceiptAdapter::refresh() {
  if (isLoading()) return;
  const auto* const made = model_->lines.get().value();
  const auto now = made ? *made : std::vector<ReceiptLine>();
  if (now == shown_) return;
  shown_ = now;
  lines_.clear();
  for (const auto& [kind, label, text] : shown_) {
    if (kind == ReceiptLine::Kind::title) continue;  // the card shows it
    const auto name = QString::fromStdString(label);
    const auto value = QString::fromStdString(text);
    lines_.push_back(QVariant::fromValue(SdkFact{name, value, banner_.joined(Label::fact, name, value)}));
  }
  Q_EMIT linesChanged();
}

}  // namespace quillon
