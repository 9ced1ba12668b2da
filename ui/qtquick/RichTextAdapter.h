// A configured HTML text for a Text element.
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
  // Markup of our own making: it holds no address and no resource. Its links are called "0", "1" and so on.
  Q_PROPERTY(QString markup READ markup NOTIFY changed)
  Q_PROPERTY(QString plainText READ plainText NOTIFY changed)
  // The words of each link.
  Q_PROPERTY(QStringList links READ links NOTIFY changed)

 public:
  RichTextAdapter(std::shared_ptr<ScreenServices> sdk, QObject* parent);

  void setHtml(const std::string& html);

  const QString& markup() const { return markup_; }
  const QString& plainText() const { return plainText_; }
  const QStringList& links() const { return links_; }

  // The markup for a line of that width, with links of that colour. Words that are longer than the line are divided as
  // the language has it.
  Q_INVOKABLE QString document(const QFont& font, double width, const QString& language, const QColor& links) const;
  // Of each link of a document, the rectangles of its lines, as the toolkit's text item lays it out.
  Q_INVOKABLE static QVariantList places(const QString& document, const QFont& font, double width, int alignment,
                                         double lineHeight);

  // Opens a link in the in-app web view.
  Q_INVOKABLE void open(int link) const;

 protected:
  void refresh() override;

 private:
  // `wordsOf` gives the text that is shown of a run.
  QString markupOf(const std::function<QString(const TextRun&)>& wordsOf) const;

  const std::shared_ptr<ScreenServices> sdk_;
  const std::shared_ptr<RichTextViewModel> model_;
  std::string html_;
  QString markup_;
  QString plainText_;
  QStringList links_;
  std::vector<std::string> addresses_;
  std::vector<std::size_t> linkOfRun_;  // one more than its number; 0 for none
};

}  // namespace quillon
