// What is to be said about a place in a configuration document.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "tools/document/Document.h"

namespace quillon::tools {

// The SDK refuses a document with an error. A warning is about what disappoints a user, a note about what may be meant.
enum class Level : std::uint8_t { note, warning, error };

[[nodiscard]] std::string_view nameOf(Level level);

// Path and text are free of control characters and bounded in length.
struct Finding {
  Level level = Level::warning;
  std::string_view rule;  // its name, as docs/rules.md has it
  std::string path;       // in decode()'s notation
  std::string text;
  std::size_t offset = 0;  // in bytes
  std::size_t line = 1;
  std::size_t column = 1;  // in characters
};

// Collects the findings of one document, the most severe and then the first of them when there are very many.
class Findings {
 public:
  static constexpr std::size_t most = 1000;

  void add(Finding finding);
  [[nodiscard]] bool hasErrors() const { return hasErrors_; }
  // Whether further ones are only counted: they are not worth the time to look for what is meant.
  [[nodiscard]] bool isFull() const { return findings_.size() == most; }
  void leaveOut() { ++leftOut_; }

  // In the order of the document, with their lines and columns; a last one says how many were left out.
  [[nodiscard]] std::vector<Finding> located(std::string_view document) &&;

 private:
  std::multimap<std::size_t, Finding> findings_;  // by offset, and in the order in which they came
  std::size_t leftOut_ = 0;
  bool hasErrors_ = false;
};

// What a rule says.
class Report {
 public:
  // All must outlive it.
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
