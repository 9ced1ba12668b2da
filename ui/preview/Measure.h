// Measures the rendered picture of a screen.
#pragma once

#include <QImage>
#include <QQuickItem>
#include <QString>
#include <vector>

#include "ui/preview/MeasuredAnswer.h"

namespace quillon::preview {

struct MeasuredText {
  QString text;
  double contrast;  // of the strongest colour against its background, from 1 to 21
};

// All visible texts of the screen.
[[nodiscard]] std::vector<MeasuredText> measuredTexts(const QImage& picture, QQuickItem& screen);

// The answer buttons of a banner, in display order; empty for other screens.
[[nodiscard]] std::vector<MeasuredAnswer> measuredAnswers(const QImage& picture, QQuickItem& screen);

}  // namespace quillon::preview
