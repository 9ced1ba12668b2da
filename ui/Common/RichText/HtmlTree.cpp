#include "ui/Common/RichText/HtmlTree.h"

#include <algorithm>
#include <csetjmp>
#include <string>
#include <utility>

#include "ui/Common/RichText/RichText.h"

namespace quillon {
namespace {

// The parser compares each tag with all that are open, and each attribute with all others: its time grows with the
// square of their number.
constexpr std::size_t mostTagsAndAttributes = 4096;

// Apart from white space. The parser would make U+FFFD of it.
bool isControl(char c) {
  return (static_cast<unsigned char>(c) < 0x20 && !std::string_view("\t\n\f\r").contains(c)) || c == 0x7f;
}

struct Tag {
  std::size_t end;  // one past it
  std::size_t attributes;
};

// The tag that begins at `begin`, if one does.
Tag tagAt(std::string_view html, std::size_t begin) {
  constexpr std::string_view blanks = " \t\n\f\r";
  constexpr std::string_view separators = " \t\n\f\r/";
  const auto next = [html](std::size_t found) { return std::min(found, html.size()); };
  Tag tag{.end = next(html.find_first_of(" \t\n\f\r/>", begin + 2)), .attributes = 0};
  auto& at = tag.end;
  while ((at = next(html.find_first_not_of(separators, at))) < html.size() && html[at] != '>') {
    ++tag.attributes;
    at = next(html.find_first_of(" \t\n\f\r/>=", at + 1));
    const auto sign = next(html.find_first_not_of(blanks, at));
    if (sign == html.size() || html[sign] != '=') continue;
    at = next(html.find_first_not_of(blanks, sign + 1));
    if (at == html.size()) break;
    if (html[at] == '"' || html[at] == '\'') {
      at = next(next(html.find(html[at], at + 1)) + 1);
    } else {
      at = next(html.find_first_of(" \t\n\f\r>", at));
    }
  }
  return tag;
}

// Looks at every place where a tag might begin. Some only look like it, in a comment, a script or an attribute, but
// that way no text can hide a tag from the count.
bool hasFewTags(std::string_view html) {
  std::size_t count = 0;
  std::size_t bytesRead = 0;  // more than the text has, when what looks like tags overlaps
  for (std::size_t at = 0; (at = html.find('<', at)) != std::string_view::npos; ++at) {
    if (at + 1 == html.size()) break;
    const char next = html[at + 1];
    if (next != '/' && (next < 'a' || next > 'z') && (next < 'A' || next > 'Z')) continue;
    const auto tag = tagAt(html, at);
    count += 1 + tag.attributes;
    bytesRead += tag.end - at;
    if (count > mostTagsAndAttributes || bytesRead > 4 * largestHtml) return false;
  }
  return true;
}

struct Arena {
  std::byte* next;
  std::byte* end;
  std::jmp_buf exhausted;
};

// The parser can neither be told to stop nor that there is no memory: it is left by a jump. All that it holds is in the
// arena, and there are only its own C functions in between.
void* allocate(void* userdata, std::size_t size) {
  auto& arena = *static_cast<Arena*>(userdata);
  constexpr auto alignment = alignof(std::max_align_t);
  size = (size + alignment - 1) / alignment * alignment;
  if (size > static_cast<std::size_t>(arena.end - arena.next)) std::longjmp(arena.exhausted, 1);
  return std::exchange(arena.next, arena.next + size);
}

void deallocate(void*, void*) {}

const GumboNode* parseInto(Arena& arena, const std::string& html) {
  GumboOptions options = kGumboDefaultOptions;
  options.allocator = allocate;
  options.deallocator = deallocate;
  options.userdata = &arena;
  options.max_errors = 0;
  if (setjmp(arena.exhausted) != 0) return nullptr;
  return gumbo_parse_with_options(&options, html.data(), html.size())->root;
}

}  // namespace

std::optional<HtmlTree> HtmlTree::parse(std::string_view html) {
  if (html.size() > largestHtml) return std::nullopt;
  std::string source(html);
  std::erase_if(source, isControl);
  if (!hasFewTags(source)) return std::nullopt;
  // A few unclosed tags may be repeated in each of many paragraphs. The tree of a text that is nothing but tags takes
  // half of this.
  const auto size = (std::size_t{1} << 20) + 64 * source.size();
  auto memory = std::make_unique_for_overwrite<std::byte[]>(size);
  Arena arena{.next = memory.get(), .end = memory.get() + size, .exhausted = {}};
  const GumboNode* const root = parseInto(arena, source);
  if (root == nullptr) return std::nullopt;
  return HtmlTree(std::move(memory), root);
}

}  // namespace quillon
