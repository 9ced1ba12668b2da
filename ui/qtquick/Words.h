// Handles words longer than a line.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QFont>
#include <QObject>
#include <QString>

namespace quillon {

class Words : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_SINGLETON

 public:
  using QObject::QObject;

  // The longest word's width, in pixels.
  Q_INVOKABLE static double longest(const QString& text, const QFont& font);
  // The text's width on one line, in pixels.
  Q_INVOKABLE static double lineOf(const QString& text, const QFont& font);
  // The font with a size in pixels, or with underlining.
  Q_INVOKABLE static QFont resized(QFont font, int size);
  Q_INVOKABLE static QFont underlined(QFont font, bool isUnderlined);
  // Inserts soft hyphens into words that exceed the width, if patterns for the language are installed.
  Q_INVOKABLE static QString divided(const QString& text, const QFont& font, double width, const QString& language);
};

}  // namespace quillon
