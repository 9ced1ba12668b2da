// Any bytes at all become styled text in its one form, of bounded size, or are refused.
#include "ui/Common/RichText/RichText.h"

#include <algorithm>

#include "core/Text/Utf8.h"
#include "fuzz/Check.h"
#include "ui/Common/RichText/StringUtils.h"

namespace {

using quillon::TextRun;
using quillon::fuzz::check;

bool hasControls(const std::string& text) {
  return std::ranges::any_of(text, [](unsigned char c) { return (c < 0x20 && c != '\n' && c != '\t') || c == 0x7f; });
}

bool haveSameStyle(const TextRun& a, TextRun b) {
  b.text = a.text;
  return a == b;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto text = quillon::richTextFromHtml({reinterpret_cast<const char*>(data), size});
  if (!text) return 0;
  std::size_t length = 0;
  for (const auto& run : text->runs) {
    check(!run.text.empty(), "no run is empty");
    check(quillon::isUtf8(run.text), "a text is UTF-8");
    check(!hasControls(run.text), "a text has no control characters");
    check(run.scale >= 0.5 && run.scale <= 3, "a scale is within its bounds");
    check(!run.link || (!run.link->empty() && quillon::isUtf8(*run.link) && !hasControls(*run.link)), "a link is text");
    length += run.text.size();
  }
  const auto same = std::ranges::adjacent_find(text->runs, haveSameStyle);
  check(same == text->runs.end(), "neighbours differ in style");
  check(trimmed(*text) == *text, "the text is trimmed");
  check(length <= 16 * size, "the text is not much longer than its source");
  return 0;
}
