// Images from the configuration.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QImage>
#include <QQuickPaintedItem>
#include <functional>
#include <memory>
#include <optional>

#include "platform/ScreenServices.h"
#include "ui/Common/Images/ImageFromBase64.h"

namespace quillon {

// Loads an image in the background. Main queue only.
class PictureSource : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("made for each image")
  Q_PROPERTY(bool exists READ exists NOTIFY changed)
  // Width divided by height; 1 without an image.
  Q_PROPERTY(double aspect READ aspect NOTIFY changed)

 public:
  using QObject::QObject;

  // `source` runs in the background. Only the latest load is shown.
  void load(const std::shared_ptr<ScreenServices>& sdk,
            std::function<std::optional<EncodedImage>(ScreenServices&)> source);

  const QImage& image() const { return image_; }
  bool exists() const { return !image_.isNull(); }
  double aspect() const { return exists() ? static_cast<double>(image_.width()) / image_.height() : 1; }

 Q_SIGNALS:
  void changed();

 private:
  QImage image_;
  int loads_ = 0;
};

// Draws the image centred and as large as fits. Qt's Image would require a URL.
class Picture : public QQuickPaintedItem {
  Q_OBJECT
  QML_ELEMENT
  Q_PROPERTY(quillon::PictureSource* source READ source WRITE setSource NOTIFY sourceChanged)

 public:
  explicit Picture(QQuickItem* parent = nullptr);

  PictureSource* source() const { return source_; }
  void setSource(PictureSource* source);
  void paint(QPainter* painter) override;

 Q_SIGNALS:
  void sourceChanged();

 private:
  QPointer<PictureSource> source_;
};

}  // namespace quillon
