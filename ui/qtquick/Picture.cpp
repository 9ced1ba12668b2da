#include "ui/qtquick/Picture.h"

#include <QBuffer>
#include <QImageReader>
#include <QPainter>
#include <QPointer>

namespace quillon {
namespace {

// Logos are drawn small; larger images would waste memory.
constexpr int longestSide = 256;

// nullopt if Qt cannot decode the image.
QImage decoded(const EncodedImage& encoded) {
  QByteArray bytes = QByteArray::fromRawData(encoded.bytes.data(), static_cast<qsizetype>(encoded.bytes.size()));
  QBuffer buffer(&bytes);
  constexpr const char* formats[] = {"png", "gif", "jpeg"};
  QImageReader reader(&buffer, formats[encoded.format]);
  reader.setAutoTransform(true);
  const QSize size = reader.size();
  if (size.width() > longestSide || size.height() > longestSide) {
    reader.setScaledSize(size.scaled(longestSide, longestSide, Qt::KeepAspectRatio).expandedTo({1, 1}));
  }
  return reader.read();
}

}  // namespace

void PictureSource::load(const std::shared_ptr<ScreenServices>& sdk,
                         std::function<std::optional<EncodedImage>(ScreenServices&)> source) {
  sdk->run([sdk, self = QPointer(this), load = ++loads_, source = std::move(source)]() mutable {
    const auto encoded = source(*sdk);
    return Job([self, load, image = encoded ? decoded(*encoded) : QImage()] {
      if (!self || self->loads_ != load) return;
      self->image_ = image;
      Q_EMIT self->changed();
    });
  });
}

Picture::Picture(QQuickItem* parent) : QQuickPaintedItem(parent) {
  setAntialiasing(true);
}

void Picture::setSource(PictureSource* source) {
  if (source == source_) return;
  if (source_) disconnect(source_, nullptr, this, nullptr);
  source_ = source;
  if (source_) connect(source_, &PictureSource::changed, this, [this] { update(); });
  update();
  Q_EMIT sourceChanged();
}

void Picture::paint(QPainter* painter) {
  if (!source_ || !source_->exists()) return;
  const QImage& image = source_->image();
  const QSizeF size = QSizeF(image.size()).scaled(boundingRect().size(), Qt::KeepAspectRatio);
  QRectF place(QPointF(), size);
  place.moveCenter(boundingRect().center());
  painter->setRenderHint(QPainter::SmoothPixmapTransform);
  painter->drawImage(place, image);
}

}  // namespace quillon
