// The receipt in the preference centre for QML.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QString>
#include <QVariantList>
#include <memory>
#include <vector>

#include "ui/PreferenceCenter/ReceiptViewModel.h"
#include "ui/qtquick/ConsentBannerAdapter.h"

namespace quillon {

class ReceiptAdapter : public Adapter {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("made for each screen")
  Q_PROPERTY(QString name READ name NOTIFY changed)
  Q_PROPERTY(QString explanation READ explanation NOTIFY changed)
  Q_PROPERTY(bool isLoading READ isLoading NOTIFY changed)
  Q_PROPERTY(QString failure READ failure NOTIFY changed)
  // Facts; an entry without a label is a heading.
  Q_PROPERTY(QVariantList lines READ lines NOTIFY linesChanged)
  Q_PROPERTY(bool canSave READ canSave NOTIFY linesChanged)
  Q_PROPERTY(QString saveLabel READ saveLabel NOTIFY changed)
  // The state of saving the file; empty if the user has not asked for it.
  Q_PROPERTY(QString saving READ saving NOTIFY changed)

 public:
  ReceiptAdapter(const ConsentBannerAdapter& banner, QObject* parent);

  QString name() const { return banner_.label(Label::receipt); }
  QString explanation() const { return banner_.label(Label::receiptExplanation); }
  bool isLoading() const { return model_->lines.get().isLoading(); }
  QString failure() const { return model_->lines.get().error() ? banner_.label(Label::receiptUnavailable) : QString(); }
  const QVariantList& lines() const { return lines_; }
  bool canSave() const { return !lines_.empty(); }
  QString saveLabel() const { return banner_.label(Label::saveReceipt); }
  QString saving() const;

  Q_INVOKABLE void load() { model_->load(); }
  Q_INVOKABLE void save() { model_->save(); }

 Q_SIGNALS:
  void linesChanged();

 protected:
  void refresh() override;

 private:
  const ConsentBannerAdapter& banner_;
  const std::shared_ptr<ReceiptViewModel> model_;
  std::vector<ReceiptLine> shown_;
  QVariantList lines_;
};

}  // namespace quillon
