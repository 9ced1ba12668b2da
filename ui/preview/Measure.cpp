#include "ui/preview/Measure.h"

#include <algorithm>
#include <map>

#include "ui/Common/Theme/Contrast.h"

namespace quillon::preview {
namespace {

void addBelow(QQuickItem& item, std::vector<QQuickItem*>& items) {
  for (QQuickItem* const child : item.childItems()) {
    if (!child->isVisible() || child->opacity() == 0) continue;
    items.push_back(child);
    addBelow(*child, items);
  }
}

// The part of an item that no ancestor cuts off.
QRect placeOf(const QQuickItem& item, const QImage& picture) {
  QRectF place = item.mapRectToScene(item.boundingRect()) & QRectF(picture.rect());
  for (const QQuickItem* above = item.parentItem(); above; above = above->parentItem()) {
    if (above->clip()) place &= above->mapRectToScene(above->boundingRect());
  }
  return place.toAlignedRect() & picture.rect();
}

Color colorOf(QRgb pixel) {
  return {.red = qRed(pixel) / 255.0, .green = qGreen(pixel) / 255.0, .blue = qBlue(pixel) / 255.0};
}

// The most frequent colour is behind the text, and that of the greatest contrast is the text's own.
double contrastIn(const QImage& picture, const QRect& place) {
  std::map<QRgb, int> colors;
  for (int y = place.top(); y <= place.bottom(); ++y) {
    for (int x = place.left(); x <= place.right(); ++x) ++colors[picture.pixel(x, y)];
  }
  const auto behind = std::ranges::max_element(colors, {}, [](const auto& color) { return color.second; });
  double greatest = 1;
  for (const auto& [pixel, count] : colors) {
    greatest = std::max(greatest, contrast(colorOf(pixel), colorOf(behind->first)));
  }
  return greatest;
}

}  // namespace

std::vector<MeasuredText> measuredTexts(const QImage& picture, QQuickItem& screen) {
  std::vector<QQuickItem*> items;
  addBelow(screen, items);
  std::vector<MeasuredText> texts;
  for (const QQuickItem* const item : items) {
    if (!item->inherits("QQuickText")) continue;
    const QString text = item->property("text").toString();
    const QRect place = placeOf(*item, picture);
    constexpr int leastSide = 8;
    if (text.trimmed().isEmpty() || place.width() < leastSide || place.height() < leastSide) continue;
    texts.push_back({text, contrastIn(picture, place)});
  }
  return texts;
}

std::vector<MeasuredButton> measuredAnswers(QQuickItem& screen) {
  std::vector<QQuickItem*> items;
  addBelow(screen, items);
  std::vector<MeasuredButton> answers;
  for (const QQuickItem* const item : items) {
    // The type's name is that of its file, with a number behind it.
    if (!QString::fromLatin1(item->metaObject()->className()).startsWith("ConsentButton_QMLTYPE")) continue;
    if (item->property("isQuiet").toBool()) continue;
    answers.push_back({item->property("text").toString(), QSizeF(item->width(), item->height()).toSize()});
  }
  return answers;
}

}  // namespace quillon::preview
