#include "ui/Common/RichText/StringUtils.h"

#include <algorithm>
#include <array>

namespace quillon {
namespace {

constexpr std::array<std::string_view, 25> whiteSpace{
    " ",      "\t",     "\n",     "\v",     "\f",     "\r",     "\u0085", "\u00a0", "\u1680",
    "\u2000", "\u2001", "\u2002", "\u2003", "\u2004", "\u2005", "\u2006", "\u2007", "\u2008",
    "\u2009", "\u200a", "\u2028", "\u2029", "\u202f", "\u205f", "\u3000"};

std::string_view withoutLeading(std::string_view text) {
  const auto leads = [&text](std::string_view space) { return text.starts_with(space); };
  for (auto found = whiteSpace.end(); (found = std::ranges::find_if(whiteSpace, leads)) != whiteSpace.end();) {
    text.remove_prefix(found->size());
  }
  return text;
}

std::string_view withoutTrailing(std::string_view text) {
  const auto trails = [&text](std::string_view space) { return text.ends_with(space); };
  for (auto found = whiteSpace.end(); (found = std::ranges::find_if(whiteSpace, trails)) != whiteSpace.end();) {
    text.remove_suffix(found->size());
  }
  return text;
}

}  // namespace

AttributedText trimmed(AttributedText text) {
  auto& runs = text.runs;
  const auto first = std::ranges::find_if(runs, [](const TextRun& run) { return !withoutLeading(run.text).empty(); });
  runs.erase(runs.begin(), first);
  while (!runs.empty() && withoutTrailing(runs.back().text).empty()) runs.pop_back();
  if (runs.empty()) return text;
  runs.front().text = withoutLeading(runs.front().text);
  runs.back().text = withoutTrailing(runs.back().text);
  return text;
}

}  // namespace quillon
