#include "ui/qtquick/RichTextAdapter.h"

namespace quillon {
namespace {

// The toolkit's names for sizes relative to the body, each next to the factor that it stands for.
QString relativeSize(double scale) {
  if (scale >= 1.75) return "xx-large";
  if (scale >= 1.35) return "x-large";
  if (scale >= 1.1) return "large";
  if (scale > 0.9) return "medium";
  if (scale > 0.75) return "small";
  return "x-small";
}

QString spanOf(const TextRun& run) {
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
  // Blanks that were kept are kept, and the line feeds of the text are its only ones.
  QString text = QString::fromStdString(run.text).toHtmlEscaped();
  text.replace('\n', "<br/>");
  return style.isEmpty() ? text : "<span style=\"" + style + "\">" + text + "</span>";
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
  const auto& text = model_->attributedString.get();
  if (!text) return;
  for (const TextRun& run : text->runs) {
    const QString words = QString::fromStdString(run.text);
    plainText_ += words;
    if (!run.link) {
      markup_ += spanOf(run);
      continue;
    }
    // A link may consist of several runs.
    if (addresses_.empty() || addresses_.back() != *run.link) {
      addresses_.push_back(*run.link);
      links_.push_back({});
    }
    links_.back() += words;
    const QString number = QString::number(addresses_.size() - 1);
    markup_ += "<a href=\"" + number + "\" class=\"l" + number + "\">" + spanOf(run) + "</a>";
  }
  if (!markup_.isEmpty()) markup_ = "<div style=\"white-space:pre-wrap\">" + markup_ + "</div>";
}

void RichTextAdapter::open(int link) const {
  if (link >= 0 && static_cast<std::size_t>(link) < addresses_.size()) {
    sdk_->openLink(addresses_[static_cast<std::size_t>(link)]);
  }
}

}  // namespace quillon
