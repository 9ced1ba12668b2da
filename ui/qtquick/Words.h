// Words that are longer than a line.
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

  // Of the longest word, in pixels.
  Q_INVOKABLE static double longest(const QString& text, const QFont& font);
  // Of the text on one line, in pixels.
  Q_INVOKABLE static double lineOf(const QString& text, const QFont& font);
  // The same font in another size, in pixels, or underlined.
  Q_INVOKABLE static QFont resized(QFont font, int size);
  Q_INVOKABLE static QFont underlined(QFont font, bool isUnderlined);
  // The text with soft hyphens in the words that do not fit into the width, as far as the machine knows the language.
  Q_INVOKABLE static QString divided(const QString& text, const QFont& font, double width, const QString& language);
};

}  // namespace quillon
