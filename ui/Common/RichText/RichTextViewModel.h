// An HTML text on a screen.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "ui/Common/LoadTask.h"
#include "ui/Common/Published.h"
#include "ui/Common/RichText/RichText.h"

namespace quillon {

// For the main queue only.
class RichTextViewModel : public std::enable_shared_from_this<RichTextViewModel> {
 public:
  static std::shared_ptr<RichTextViewModel> make(std::shared_ptr<ScreenServices> sdk);
  explicit RichTextViewModel(std::shared_ptr<ScreenServices> sdk);  // use make()

  Published<std::string> html{""};
  // Of the present html; nothing until it is converted, and when it cannot be.
  Published<std::optional<AttributedText>> attributedString{std::nullopt};

  // Converts in the background: a snippet takes a tenth of a millisecond, but the longest that is accepted fifteen, and
  // the most contorted a third of a second. Of several texts only the last one is delivered.
  void setHtml(std::string text);

 private:
  const std::shared_ptr<ScreenServices> sdk_;
  std::optional<LoadTask> conversion_;
};

}  // namespace quillon
