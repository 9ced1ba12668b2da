#include "ui/Common/RichText/HtmlTree.h"

#include <algorithm>
#include <csetjmp>
#include <string>
#include <utility>

#include "ui/Common/RichText/RichText.h"

namespace quillon {
namespace {

// The parser's time is quadratic in the number of open tags and of an element's attributes.
constexpr std::size_t mostTagsAndAttributes = 4096;

// Control characters except white space, which the parser would replace by U+FFFD.
bool isUnreadable(char c) {
  return (static_cast<unsigned char>(c) < 0x20 && !std::string_view("\t\n\f\r").contains(c)) || c == 0x7f;
}

struct Tag {
  std::size_t end;  // one past the tag
  std::size_t attributes;
};

// The tag at `begin`, which must look like one.
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

// Counts everything that looks like a tag, even in comments, scripts and attributes, so that no text can hide tags from
// the count.
bool hasFewTags(std::string_view html) {
  std::size_t count = 0;
  std::size_t bytesRead = 0;  // may exceed the text's size, since apparent tags can overlap
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

// The parser has no error path for failed allocations, so this leaves it with longjmp(). That is safe: all its memory
// is in the arena, and only its C functions are on the stack.
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
  std::erase_if(source, isUnreadable);
  if (!hasFewTags(source)) return std::nullopt;
  // Unclosed tags may be repeated in every paragraph. A text that consists only of tags needs half of this.
  const auto size = (std::size_t{1} << 20) + 64 * source.size();
  auto memory = std::make_unique_for_overwrite<std::byte[]>(size);
  Arena arena{.next = memory.get(), .end = memory.get() + size, .exhausted = {}};
  const GumboNode* const root = parseInto(arena, source);
  if (root == nullptr) return std::nullopt;
  return HtmlTree(std::move(memory), root);
}

}  // namespace quillon
