// Configured HTML for a QML Text element.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QColor>
#include <QFont>
#include <QString>
#include <QStringList>
#include <QVariantList>
#include <functional>
#include <memory>
#include <string>

#include "ui/Common/RichText/RichTextViewModel.h"
#include "ui/qtquick/Adapter.h"

namespace quillon {

class RichTextAdapter : public Adapter {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("made for each text")
  // Generated markup without URLs or resources. Its links are named "0", "1" and so on.
  Q_PROPERTY(QString markup READ markup NOTIFY changed)
  Q_PROPERTY(QString plainText READ plainText NOTIFY changed)
  // The text of each link.
  Q_PROPERTY(QStringList links READ links NOTIFY changed)

 public:
  RichTextAdapter(std::shared_ptr<ScreenServices> sdk, QObject* parent);

  void setHtml(const std::string& html);

  const QString& markup() const { return markup_; }
  const QString& plainText() const { return plainText_; }
  const QStringList& links() const { return links_; }

  // The markup for a line width and link colour. Words longer than the line are hyphenated in the language.
  Q_INVOKABLE QString document(const QFont& font, double width, const QString& language, const QColor& links) const;
  // The line rectangles of each link in a document, laid out as by Qt's Text item.
  Q_INVOKABLE static QVariantList places(const QString& document, const QFont& font, double width, int alignment,
                                         double lineHeight);

  // Opens the link in the in-app web view.
  Q_INVOKABLE void open(int link) const;

 protected:
  void refresh() override;

 private:
  // `wordsOf` returns a run's displayed text.
  QString markupOf(const std::function<QString(const TextRun&)>& wordsOf) const;

  const std::shared_ptr<ScreenServices> sdk_;
  const std::shared_ptr<RichTextViewModel> model_;
  std::string html_;
  QString markup_;
  QString plainText_;
  QStringList links_;
  std::vector<std::string> addresses_;
  std::vector<std::size_t> linkOfRun_;  // link index plus one; 0 for none
};

}  // namespace quillon
