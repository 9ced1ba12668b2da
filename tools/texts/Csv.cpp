#include "tools/texts/Csv.h"

#include <algorithm>

namespace quillon::tools {
namespace {

constexpr std::string_view formulaMarks = "=+-@\t\r'";

std::string cell(std::string_view text) {
  std::string quoted;
  if (!text.empty() && formulaMarks.contains(text.front())) quoted += '\'';
  for (const char c : text) quoted += c == '"' ? std::string(2, c) : std::string(1, c);
  return quoted.find_first_of("\",;\t\r\n ") == std::string::npos ? quoted : '"' + quoted + '"';
}

std::string withoutMark(std::string text) {
  if (text.size() > 1 && text[0] == '\'' && formulaMarks.contains(text[1])) text.erase(0, 1);
  return text;
}

// Reads row by row.
class Reader {
 public:
  explicit Reader(std::string_view text) : text_(text) {
    if (text_.starts_with("\xEF\xBB\xBF")) text_.remove_prefix(3);
    // The first separator character found: the programs' default differs by country.
    const auto mark = text_.find_first_of(",;\t");
    if (mark != std::string_view::npos) separator_ = text_[mark];
  }

  bool isAtEnd() const { return at_ >= text_.size(); }
  std::size_t line() const { return line_; }

  // An error for an unclosed quote.
  std::expected<std::vector<std::string>, std::string> row() {
    std::vector<std::string> cells;
    for (;;) {
      auto cell = nextCell();
      if (!cell) return std::unexpected(cell.error());
      cells.push_back(withoutMark(*std::move(cell)));
      if (isAtEnd()) return cells;
      if (text_[at_++] == separator_) continue;
      if (text_[at_ - 1] == '\r' && !isAtEnd() && text_[at_] == '\n') ++at_;
      ++line_;
      return cells;
    }
  }

 private:
  std::expected<std::string, std::string> nextCell() {
    std::string cell;
    if (!isAtEnd() && text_[at_] == '"') {
      const auto begin = line_;
      for (++at_;; ++at_) {
        if (isAtEnd()) return std::unexpected("line " + std::to_string(begin) + ": a quote is not closed");
        if (text_[at_] == '"' && (++at_ >= text_.size() || text_[at_] != '"')) break;
        if (text_[at_] == '\n') ++line_;
        cell += text_[at_];
      }
    }
    while (!isAtEnd() && text_[at_] != separator_ && text_[at_] != '\n' && text_[at_] != '\r') cell += text_[at_++];
    return cell;
  }

  std::string_view text_;
  char separator_ = ',';
  std::size_t at_ = 0;
  std::size_t line_ = 1;
};

}  // namespace

std::string toCsv(const TextTable& table) {
  std::string csv = "id";
  for (const auto& language : table.languages) csv += ',' + cell(language);
  csv += ",missing\r\n";
  for (const TextRow& row : table.rows) {
    csv += cell(row.id);
    std::string missing;
    for (const auto& language : table.languages) {
      const auto text = row.texts.find(language);
      const bool isThere = text != row.texts.end() && !text->second.empty();
      csv += ',' + (isThere ? cell(text->second) : "");
      if (!isThere) missing += (missing.empty() ? "" : " ") + language;
    }
    csv += ',' + cell(missing) + "\r\n";
  }
  return csv;
}

std::expected<std::vector<Translation>, std::string> fromCsv(std::string_view text) {
  Reader reader(text);
  const auto header = reader.row();
  if (!header) return std::unexpected(header.error());
  if (header->size() < 2 || header->front() != "id") {
    return std::unexpected(R"(the first line does not begin with "id" and a language)");
  }
  std::vector<Translation> translations;
  while (!reader.isAtEnd()) {
    const auto line = reader.line();
    auto cells = reader.row();
    if (!cells) return std::unexpected(cells.error());
    if (cells->size() == 1 && cells->front().empty()) continue;
    if (cells->size() > header->size()) {
      return std::unexpected("line " + std::to_string(line) + " has more columns than the first");
    }
    for (std::size_t i = 1; i < cells->size(); ++i) {
      if ((*header)[i] == "missing" || (*cells)[i].empty()) continue;
      translations.push_back({cells->front(), (*header)[i], std::move((*cells)[i])});
    }
  }
  return translations;
}

}  // namespace quillon::tools
