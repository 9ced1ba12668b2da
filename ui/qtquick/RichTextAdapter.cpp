#include "ui/qtquick/RichTextAdapter.h"

#include <QAbstractTextDocumentLayout>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextLayout>
#include <QTextOption>
#include <algorithm>
#include <cmath>
#include <map>

#include "ui/qtquick/Words.h"

namespace quillon {
namespace {

// Qt's names of relative sizes, chosen by the nearest factor.
QString relativeSize(double scale) {
  if (scale >= 1.75) return "xx-large";
  if (scale >= 1.35) return "x-large";
  if (scale >= 1.1) return "large";
  if (scale > 0.9) return "medium";
  if (scale > 0.75) return "small";
  return "x-small";
}

QString spanOf(const TextRun& run, const QString& words) {
  QString style;
  if (run.font == TextRun::bold) style += "font-weight:600;";
  if (run.font == TextRun::italic) style += "font-style:italic;";
  if (run.scale != 1) style += "font-size:" + relativeSize(run.scale) + ";";
  if (run.underline || run.strikethrough) {
    style += "text-decoration:";
    if (run.underline) style += " underline";
    if (run.strikethrough) style += " line-through";
    style += ";";
  }
  // Preserves white space; line feeds become the only line breaks.
  QString text = words.toHtmlEscaped();
  text.replace('\n', "<br/>");
  return style.isEmpty() ? text : "<span style=\"" + style + "\">" + text + "</span>";
}

QString wordsOf(const TextRun& run) {
  return QString::fromStdString(run.text);
}

QFont fontOf(const TextRun& run, QFont font) {
  font.setPixelSize(qRound(font.pixelSize() * run.scale));
  if (run.font == TextRun::bold) font.setWeight(QFont::DemiBold);
  return font;
}

// Appends the line rectangles between two positions of a block.
void addLines(const QTextBlock& block, QPointF origin, int begin, int end, QVariantList& rectangles) {
  const QTextLayout& layout = *block.layout();
  for (int i = 0; i < layout.lineCount(); ++i) {
    const QTextLine line = layout.lineAt(i);
    const int first = std::max(begin, line.textStart());
    const int last = std::min(end, line.textStart() + line.textLength());
    if (first >= last) continue;
    const double from = line.cursorToX(first);
    const double to = line.cursorToX(last);
    rectangles.push_back(
        QRectF(origin.x() + std::min(from, to), origin.y() + line.y(), std::abs(to - from), line.height()));
  }
}

}  // namespace

RichTextAdapter::RichTextAdapter(std::shared_ptr<ScreenServices> sdk, QObject* parent)
    : Adapter(parent), sdk_(std::move(sdk)), model_(RichTextViewModel::make(sdk_)) {
  follow(model_->attributedString);
}

void RichTextAdapter::setHtml(const std::string& html) {
  if (html == html_) return;
  html_ = html;
  model_->setHtml(html);
}

void RichTextAdapter::refresh() {
  markup_.clear();
  plainText_.clear();
  links_.clear();
  addresses_.clear();
  linkOfRun_.clear();
  const auto& text = model_->attributedString.get();
  if (!text) return;
  const TextRun* former = nullptr;
  for (const TextRun& run : text->runs) {
    plainText_ += wordsOf(run);
    // Adjacent runs with the same URL are one link.
    if (run.link && !(former && former->link == run.link)) {
      addresses_.push_back(*run.link);
      links_.push_back({});
    }
    if (run.link) links_.back() += wordsOf(run);
    linkOfRun_.push_back(run.link ? addresses_.size() : 0);
    former = &run;
  }
  markup_ = markupOf(wordsOf);
}

QString RichTextAdapter::markupOf(const std::function<QString(const TextRun&)>& wordsOf) const {
  const auto& text = model_->attributedString.get();
  if (!text || text->runs.empty()) return {};
  QString markup = "<div style=\"white-space:pre-wrap\">";
  for (std::size_t i = 0; i < text->runs.size(); ++i) {
    const QString span = spanOf(text->runs[i], wordsOf(text->runs[i]));
    const std::size_t link = linkOfRun_[i];
    markup += link == 0 ? span : "<a href=\"" + QString::number(link - 1) + "\">" + span + "</a>";
  }
  return markup + "</div>";
}

QString RichTextAdapter::document(const QFont& font, double width, const QString& language, const QColor& links) const {
  const QString style = "<style>a { color: " + links.name() + "; }</style>";
  const auto& text = model_->attributedString.get();
  const bool fits = !text || width <= 0 || std::ranges::all_of(text->runs, [&](const TextRun& run) {
    return Words::longest(wordsOf(run), fontOf(run, font)) <= width;
  });
  if (fits) return style + markup_;
  return style +
         markupOf([&](const TextRun& run) { return Words::divided(wordsOf(run), fontOf(run, font), width, language); });
}

QVariantList RichTextAdapter::places(const QString& document, const QFont& font, double width, int alignment,
                                     double lineHeight) {
  // The same layout as QQuickText's.
  QTextDocument text;
  text.setDocumentMargin(0);
  text.setDefaultFont(font);
  text.setHtml(document);
  QTextOption option(static_cast<Qt::Alignment>(alignment));
  option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
  option.setUseDesignMetrics(true);
  text.setDefaultTextOption(option);
  for (QTextBlock block = text.begin(); block.isValid(); block = block.next()) {
    QTextBlockFormat format = block.blockFormat();
    constexpr int percent = 100;
    format.setLineHeight(lineHeight * percent, QTextBlockFormat::ProportionalHeight);
    QTextCursor(block).setBlockFormat(format);
  }
  text.setTextWidth(width);

  std::map<int, QVariantList> places;
  for (QTextBlock block = text.begin(); block.isValid(); block = block.next()) {
    const QPointF origin = text.documentLayout()->blockBoundingRect(block).topLeft();
    for (auto at = block.begin(); !at.atEnd(); ++at) {
      const QTextFragment fragment = at.fragment();
      if (!fragment.charFormat().isAnchor()) continue;
      const int begin = fragment.position() - block.position();
      addLines(block, origin, begin, begin + fragment.length(), places[fragment.charFormat().anchorHref().toInt()]);
    }
  }
  QVariantList all;
  for (const auto& [link, rectangles] : places) all.push_back(QVariant(rectangles));
  return all;
}

void RichTextAdapter::open(int link) const {
  if (link >= 0 && static_cast<std::size_t>(link) < addresses_.size()) {
    sdk_->openLink(addresses_[static_cast<std::size_t>(link)]);
  }
}

}  // namespace quillon
