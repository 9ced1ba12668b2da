#include "ui/preview/Measure.h"

#include <QFont>
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

// The visible part of an item, clipped by its ancestors.
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

struct Colors {
  Color background;     // the most frequent colour
  double contrast = 1;  // of the colour with the highest contrast: the text's, since its edges are anti-aliased
};

Colors colorsIn(const QImage& picture, const QRect& place) {
  std::map<QRgb, int> counts;
  for (int y = place.top(); y <= place.bottom(); ++y) {
    for (int x = place.left(); x <= place.right(); ++x) ++counts[picture.pixel(x, y)];
  }
  Colors colors;
  if (counts.empty()) return colors;
  colors.background =
      colorOf(std::ranges::max_element(counts, {}, [](const auto& color) { return color.second; })->first);
  for (const auto& [pixel, count] : counts) {
    colors.contrast = std::max(colors.contrast, contrast(colorOf(pixel), colors.background));
  }
  return colors;
}

// Excludes the border, which is not text.
QRect insideOf(const QQuickItem& button, const QImage& picture) {
  constexpr int border = 4;
  return placeOf(button, picture).adjusted(border, border, -border, -border) & picture.rect();
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
    texts.push_back({text, colorsIn(picture, place).contrast});
  }
  return texts;
}

std::vector<MeasuredAnswer> measuredAnswers(const QImage& picture, QQuickItem& screen) {
  std::vector<QQuickItem*> items;
  addBelow(screen, items);
  std::vector<MeasuredAnswer> answers;
  for (const QQuickItem* const item : items) {
    // A QML type's class name is its file name with a numeric suffix.
    if (!QString::fromLatin1(item->metaObject()->className()).startsWith("ConsentButton_QMLTYPE")) continue;
    if (item->property("isQuiet").toBool()) continue;
    const QRect place = placeOf(*item, picture);
    const QPoint beside(place.left() - 3, place.center().y());
    const Colors colors = colorsIn(picture, insideOf(*item, picture));
    answers.push_back(
        {.text = item->property("text").toString().toStdString(),
         .width = qRound(item->width()),
         .height = qRound(item->height()),
         .weight = item->property("font").value<QFont>().weight(),
         .contrast = colors.contrast,
         .prominence = picture.valid(beside) ? contrast(colors.background, colorOf(picture.pixel(beside))) : 1});
  }
  return answers;
}

}  // namespace quillon::preview
