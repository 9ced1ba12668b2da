// What a reader meets in the picture of a screen.
#pragma once

#include <QImage>
#include <QQuickItem>
#include <QString>
#include <vector>

#include "ui/preview/MeasuredAnswer.h"

namespace quillon::preview {

struct MeasuredText {
  QString text;
  double contrast;  // of its strongest colour with the one behind it, from 1 to 21
};

// Of each text of the screen that is in the picture.
[[nodiscard]] std::vector<MeasuredText> measuredTexts(const QImage& picture, QQuickItem& screen);

// The answers in the row of a banner's answers, in the order of the screen; none on other screens.
[[nodiscard]] std::vector<MeasuredAnswer> measuredAnswers(const QImage& picture, QQuickItem& screen);

}  // namespace quillon::preview
