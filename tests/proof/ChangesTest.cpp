// Ten thousand changes of exports, of which every one must be found.
#include <gtest/gtest.h>

#include <random>

#include "proof/Check/Verification.h"
#include "proof/Json/Times.h"
#include "tests/proof/Evidence.h"
#include "tests/support/Effort.h"

namespace quillon::proof::test {
namespace {

class Changer {
 public:
  explicit Changer(std::uint64_t seed) : random_(seed) {}

  // Changes something, and tells which subject a fault must name at least.
  std::string change(ExportFiles& files) {
    using Change = std::string (Changer::*)(ExportFiles&);
    constexpr Change changes[] = {&Changer::flipBit,     &Changer::dropEntry,  &Changer::swapEntries,
                                  &Changer::repeatEntry, &Changer::editEntry,  &Changer::editDate,
                                  &Changer::editNotice,  &Changer::dropNotice, &Changer::replaceKey,
                                  &Changer::editReceipt, &Changer::chainAnew,  &Changer::dropFile};
    auto named = (this->*changes[below(std::size(changes))])(files);
    if (below(2) == 1) sumAnew(files);
    return named;
  }

 private:
  std::size_t below(std::size_t limit) { return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random_); }

  // Changes the entries of the history; the change tells which it is about.
  template <class Change>
  static std::string changeEntries(ExportFiles& files, const Change& change) {
    auto history = json::parse(files.at("history.json")).as_object();
    auto named = change(history, history.at("entries").as_array());
    files["history.json"] = json::serialize(history);
    return named;
  }
  static std::string nameAt(json::array& entries, std::size_t i) { return nameOf(entries.at(i).as_object()); }
  static std::string nameOfNotice(const std::string& file) { return "notice " + file.substr(8, 64); }
  static auto at(std::size_t i) { return static_cast<std::ptrdiff_t>(i); }

  // As somebody without the key would: the list is right again, and its signature is not.
  static void sumAnew(ExportFiles& files) {
    const auto manifest = files.find("manifest.json");
    if (manifest == files.end()) return;
    json::error_code error;
    auto document = json::parse(manifest->second, error);
    if (error || !document.is_object() || !document.get_object().contains("manifest")) return;
    json::array list;
    for (const auto& [name, content] : files) {
      if (name == "manifest.json") continue;
      list.push_back(json::object{{"name", name}, {"size", content.size()}, {"sha256", sha256(content)}});
    }
    document.get_object().at("manifest").as_object()["files"] = std::move(list);
    manifest->second = canonicalJson(document);
  }

  std::string flipBit(ExportFiles& files) {
    const auto file = std::next(files.begin(), at(below(files.size())));
    auto& byte = file->second.at(below(file->second.size()));
    byte = static_cast<char>(byte ^ 1 << below(8));
    return "";  // the file, its signature or what is in it
  }

  std::string dropEntry(ExportFiles& files) {
    return changeEntries(files, [&](json::object&, json::array& entries) {
      const auto i = below(entries.size());
      auto named = nameAt(entries, i == 0 ? 1 : i - 1);
      entries.erase(entries.begin() + at(i));
      return named;
    });
  }

  std::string swapEntries(ExportFiles& files) {
    return changeEntries(files, [&](json::object&, json::array& entries) {
      const auto i = below(entries.size() - 1);
      auto named = nameAt(entries, i);
      std::swap(entries.at(i), entries.at(i + 1 + below(entries.size() - i - 1)));
      return named;
    });
  }

  std::string repeatEntry(ExportFiles& files) {
    return changeEntries(files, [&](json::object&, json::array& entries) {
      const auto i = below(entries.size());
      auto named = nameAt(entries, i);
      entries.insert(entries.begin() + at(i), json::value(entries.at(i)));
      return named;
    });
  }

  std::string edit(ExportFiles& files, const char* member, const json::value& value) {
    return changeEntries(files, [&](json::object&, json::array& entries) {
      auto i = below(entries.size());
      while (entries.at(i).as_object()[member] == value) i = below(entries.size());
      entries.at(i).as_object()[member] = value;
      return nameAt(entries, i);
    });
  }

  std::string editEntry(ExportFiles& files) {
    const std::pair<const char*, json::value> edits[] = {
        {"to", "granted"}, {"to", "declined"}, {"cause", "user"}, {"notice", "application"}, {"language", "fr"}};
    const auto& [member, value] = edits[below(std::size(edits))];
    return edit(files, member, value);
  }

  std::string editDate(ExportFiles& files) {
    return edit(files, "time", decisionTime - 1 - static_cast<std::int64_t>(below(1000)));
  }

  std::string editNotice(ExportFiles& files) {
    auto& text = files.lower_bound("notices/")->second;
    auto notice = json::parse(text).as_object();
    notice["texts"] = "Say yes " + std::to_string(below(1000));
    text = json::serialize(notice);
    return nameOfNotice(files.lower_bound("notices/")->first);
  }

  std::string dropNotice(ExportFiles& files) {
    const std::string name = files.lower_bound("notices/")->first;
    files.erase(name);
    return nameOfNotice(name);
  }

  std::string replaceKey(ExportFiles& files) {
    files["key.json"] = json::serialize(otherKey().publicKey().jwk());
    return "key";
  }

  std::string editReceipt(ExportFiles& files) {
    auto document = json::parse(files["receipt.json"]).as_object();
    document.at("receipt").as_object()["dct:created"] =
        timeText(issueTime - 1 - static_cast<std::int64_t>(below(1000)));
    files["receipt.json"] = json::serialize(document);
    return "signature of the receipt";
  }

  // A history that is whole in itself, but not the one of the receipt.
  std::string chainAnew(ExportFiles& files) {
    return changeEntries(files, [&](json::object& history, json::array& entries) {
      const auto i = below(entries.size());
      entries.at(i).as_object()["time"] = 1;
      for (std::size_t next = i + 1; next < entries.size(); ++next) {
        entries.at(next).as_object()["previous"] = entryHash(entries.at(next - 1).as_object());
      }
      history["head"] = entryHash(entries.back().as_object());
      return std::string("receipt");
    });
  }

  std::string dropFile(ExportFiles& files) {
    const auto file = std::next(files.begin(), at(below(files.size())));
    const std::string name = file->first;
    files.erase(file);
    return name.starts_with("notices/") ? nameOfNotice(name) : "file " + name;
  }

  std::mt19937_64 random_;
};

TEST(Changes, OfAnExportAreFoundAndNamedAllTenThousand) {
  constexpr std::uint64_t count = quillon::test::isSanitized ? 500 : 10'000;
  const auto original = someExport();
  for (std::uint64_t seed = 0; seed < count; ++seed) {
    ExportFiles files = original;
    const auto named = Changer(seed).change(files);
    if (files == original) continue;  // a bit of a sum that was made right again
    Findings findings;
    checkExport(files, {.now = issueTime}, findings);
    ASSERT_GT(findings.faults(), 0u) << "seed " << seed;
    ASSERT_TRUE(named.empty() || findings.names(named)) << "seed " << seed << ", not named: " << named << '\n'
                                                        << listed(findings);
  }
}

}  // namespace
}  // namespace quillon::proof::test
