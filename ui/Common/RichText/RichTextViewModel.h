// The view model of an HTML text.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "ui/Common/LoadTask.h"
#include "ui/Common/Published.h"
#include "ui/Common/RichText/RichText.h"

namespace quillon {

// Main queue only.
class RichTextViewModel : public std::enable_shared_from_this<RichTextViewModel> {
 public:
  static std::shared_ptr<RichTextViewModel> make(std::shared_ptr<ScreenServices> sdk);
  explicit RichTextViewModel(std::shared_ptr<ScreenServices> sdk);  // use make()

  Published<std::string> html{""};
  // The converted `html`; nullopt until converted, or if it cannot be.
  Published<std::optional<AttributedText>> attributedString{std::nullopt};

  // Converts in the background: typically 0.1 ms, 15 ms for the longest accepted text, a third of a second for the most
  // complex one. Only the latest text is delivered.
  void setHtml(std::string text);

 private:
  const std::shared_ptr<ScreenServices> sdk_;
  std::optional<LoadTask> conversion_;
};

}  // namespace quillon
