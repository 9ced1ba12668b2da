#include "ui/qtquick/Hyphenation.h"

#include <QDir>
#include <QFile>
#include <QLocale>
#include <QStringDecoder>
#include <algorithm>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace quillon {
namespace {

constexpr char16_t softHyphen = 0xAD;
constexpr qsizetype longestWord = 100;
constexpr qsizetype largestFile = qsizetype{4} << 20;

// Liang's hyphenation patterns: letters with numbers between them, of which the highest at each position counts; a word
// may be divided where it is odd. The usual library for these files takes seconds to load the German one.
class Level {
 public:
  // Parses a pattern such as "1ba", ".ab3c" or "te2st.".
  void add(QStringView line) {
    Pattern pattern;
    char number = 0;
    for (const QChar c : line) {
      if (c.isDigit()) {
        number = static_cast<char>(c.digitValue());
        continue;
      }
      pattern.letters += c;
      pattern.numbers += std::exchange(number, 0);
    }
    pattern.numbers += number;
    patterns_.push_back(std::move(pattern));
  }
  void sort() { std::ranges::sort(patterns_, {}, &Pattern::letters); }

  // The number before each letter of the word, which begins and ends with a full stop.
  std::string numbersOf(const QString& word) const {
    std::string numbers(static_cast<std::size_t>(word.size()) + 1, 0);
    for (qsizetype begin = 0; begin < word.size(); ++begin) {
      for (qsizetype length = 1; begin + length <= word.size(); ++length) {
        const QStringView part = QStringView(word).mid(begin, length);
        const auto found = std::ranges::lower_bound(patterns_, part, {}, &Pattern::letters);
        if (found == patterns_.end() || !QStringView(found->letters).startsWith(part)) break;
        if (found->letters != part) continue;
        for (std::size_t i = 0; i < found->numbers.size(); ++i) {
          char& number = numbers[static_cast<std::size_t>(begin) + i];
          number = std::max(number, found->numbers[i]);
        }
      }
    }
    return numbers;
  }

 private:
  struct Pattern {
    QString letters;
    std::string numbers;  // one more than letters
  };

  std::vector<Pattern> patterns_;
};

struct Patterns {
  std::vector<Level> levels;  // compound boundaries first, then other positions
  qsizetype leastBefore = 2;
  qsizetype leastAfter = 2;
};

// Empty if the file's format is unknown.
Patterns read(const QString& path) {
  Patterns patterns;
  QFile file(path);
  if (!file.open(QFile::ReadOnly) || file.size() > largestFile) return patterns;
  const QByteArray encoding = file.readLine().trimmed();
  const bool isUtf8 = encoding == "UTF-8";
  if (!isUtf8 && encoding != "ISO8859-1") return patterns;
  QStringDecoder decoder(isUtf8 ? QStringDecoder::Utf8 : QStringDecoder::Latin1);
  const QString text = decoder(file.readAll());
  patterns.levels.emplace_back();
  for (const QStringView raw : QStringView(text).split('\n', Qt::SkipEmptyParts)) {
    const QStringView line = raw.trimmed();
    if (line.startsWith(u"LEFTHYPHENMIN")) patterns.leastBefore = line.split(' ').back().toInt();
    if (line.startsWith(u"RIGHTHYPHENMIN")) patterns.leastAfter = line.split(' ').back().toInt();
    if (line == u"NEXTLEVEL") patterns.levels.emplace_back();
    // Skips comments, settings, and divisions that change the spelling.
    const bool isOther = line.isEmpty() || line[0] == '%' || line[0] == '#' || line[0].isUpper() || line.contains('/');
    if (!isOther) patterns.levels.back().add(line);
  }
  for (Level& level : patterns.levels) level.sort();
  return patterns;
}

// Tries the language's default region, then none: "de" finds hyph_de_DE.dic, "pt-BR" hyph_pt_BR.dic.
Patterns patternsOf(const QString& language) {
  const QDir folder("/usr/share/hyphen");
  const QString name = QLocale(language).name();
  for (const QString& file : {"hyph_" + name + ".dic", "hyph_" + name.section('_', 0, 0) + ".dic"}) {
    if (folder.exists(file)) return read(folder.filePath(file));
  }
  return {};
}

}  // namespace

QString hyphenated(const QString& word, const QString& language) {
  static std::map<QString, Patterns> known;
  if (word.size() > longestWord || word.contains(QChar(softHyphen))) return word;
  auto found = known.find(language);
  if (found == known.end()) found = known.emplace(language, patternsOf(language)).first;
  const Patterns& patterns = found->second;
  const QString letters = '.' + word.toLower() + '.';
  if (letters.size() != word.size() + 2) return word;
  std::vector<std::string> numbers;
  for (const Level& level : patterns.levels) numbers.push_back(level.numbersOf(letters));
  QString result;
  for (qsizetype i = 0; i < word.size(); ++i) {
    const bool isDivision = std::ranges::any_of(
        numbers, [i](const std::string& level) { return level[static_cast<std::size_t>(i) + 1] % 2 == 1; });
    const bool isBetweenLetters = i > 0 && word[i].isLetter() && word[i - 1].isLetter();
    if (isDivision && isBetweenLetters && i >= patterns.leastBefore && word.size() - i >= patterns.leastAfter) {
      result += QChar(softHyphen);
    }
    result += word[i];
  }
  return result;
}

}  // namespace quillon
