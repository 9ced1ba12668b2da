#include "ui/qtquick/Words.h"

#include <QFontMetricsF>
#include <algorithm>
#include <cmath>

#include "ui/qtquick/Hyphenation.h"

namespace quillon {
namespace {

// Calls with each word and the white space before it; the last word may be empty.
void forEachWord(const QString& text, const auto& use) {
  for (qsizetype begin = 0; begin <= text.size();) {
    qsizetype first = begin;
    while (first < text.size() && text[first].isSpace()) ++first;
    qsizetype end = first;
    while (end < text.size() && !text[end].isSpace()) ++end;
    use(QStringView(text).mid(begin, first - begin), text.mid(first, end - first));
    if (end == text.size()) return;
    begin = end;
  }
}

// The width of a line for the text. A line breaks even if only the last glyph overhangs, as in "ľ".
double lineWidth(const QString& text, const QFontMetricsF& metrics) {
  return std::max(std::ceil(metrics.horizontalAdvance(text)) + 1, std::ceil(metrics.boundingRect(text).right()));
}

}  // namespace

double Words::longest(const QString& text, const QFont& font) {
  const QFontMetricsF metrics(font);
  double width = 0;
  forEachWord(text,
              [&](QStringView /*blanks*/, const QString& word) { width = std::max(width, lineWidth(word, metrics)); });
  return width;
}

double Words::lineOf(const QString& text, const QFont& font) {
  return lineWidth(text, QFontMetricsF(font));
}

QFont Words::resized(QFont font, int size) {
  font.setPixelSize(std::max(1, size));
  return font;
}

QFont Words::underlined(QFont font, bool isUnderlined) {
  font.setUnderline(isUnderlined);
  return font;
}

QString Words::divided(const QString& text, const QFont& font, double width, const QString& language) {
  if (width <= 0 || lineOf(text, font) <= width) return text;
  const QFontMetricsF metrics(font);
  QString result;
  forEachWord(text, [&](QStringView blanks, const QString& word) {
    result += blanks;
    result += metrics.horizontalAdvance(word) > width ? hyphenated(word, language) : word;
  });
  return result;
}

}  // namespace quillon
