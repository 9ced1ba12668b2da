// Findings about places in a configuration document.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "tools/document/Document.h"

namespace quillon::tools {

// An error: the SDK rejects the document. A warning: users would notice the problem. A note: probably unintended.
enum class Level : std::uint8_t { note, warning, error };

[[nodiscard]] std::string_view nameOf(Level level);

// `path` and `text` have no control characters and are bounded in length.
struct Finding {
  Level level = Level::warning;
  std::string_view rule;  // as docs/tools.md lists it
  std::string path;       // in decode()'s notation
  std::string text;
  std::size_t offset = 0;  // in bytes
  std::size_t line = 1;
  std::size_t column = 1;  // in characters, not bytes
};

// Collects a document's findings; beyond `most`, keeps the most severe and earliest ones.
class Findings {
 public:
  static constexpr std::size_t most = 1000;

  void add(Finding finding);
  [[nodiscard]] bool hasErrors() const { return hasErrors_; }
  // Further findings are only counted, so rules can skip expensive suggestions.
  [[nodiscard]] bool isFull() const { return findings_.size() == most; }
  void leaveOut() { ++leftOut_; }

  // In document order, with lines and columns; a last finding states the number of omitted ones.
  [[nodiscard]] std::vector<Finding> located(std::string_view document) &&;

 private:
  std::multimap<std::size_t, Finding> findings_;  // by offset, then in order of insertion
  std::size_t leftOut_ = 0;
  bool hasErrors_ = false;
};

// Reports findings of one rule.
class Report {
 public:
  // All arguments must outlive the report.
  Report(Findings& findings, const Document& document, Level level, std::string_view rule)
      : findings_(findings), document_(document), level_(level), rule_(rule) {}

  void operator()(const DocumentPath& path, std::string text) const {
    if (isFull()) return findings_.leaveOut();
    findings_.add({level_, rule_, path.text(), std::move(text), document_.nearest(path).begin});
  }
  [[nodiscard]] bool isFull() const { return findings_.isFull(); }

 private:
  Findings& findings_;
  const Document& document_;
  Level level_;
  std::string_view rule_;
};

}  // namespace quillon::tools
