// Ten thousand changes of exports, of which every one must be found.
#include <gtest/gtest.h>

#include <random>

#include "proof/Check/Verification.h"
#include "tests/proof/Evidence.h"
#include "tests/support/Effort.h"

namespace quillon::proof::test {
namespace {

// As somebody without the key would: the list is right again, and its signature is not.
void sumAnew(ExportFiles& files) {
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

TEST(Changes, OfAnExportAreFoundAllTenThousand) {
  constexpr std::uint64_t count = quillon::test::isSanitized ? 500 : 10'000;
  const auto original = someExport();
  for (std::uint64_t seed = 0; seed < count; ++seed) {
    std::mt19937_64 random(seed);
    const auto below = [&](std::size_t limit) {
      return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random);
    };
    ExportFiles files = original;
    const auto file = std::next(files.begin(), static_cast<std::ptrdiff_t>(below(files.size())));
    auto& byte = file->second.at(below(file->second.size()));
    byte = static_cast<char>(byte ^ 1 << below(8));
    if (below(2) == 1) sumAnew(files);
    if (files == original) continue;  // a bit of a sum that was made right again
    Findings findings;
    checkExport(files, {.now = issueTime}, findings);
    ASSERT_GT(findings.faults(), 0u) << "seed " << seed;
  }
}

// Whatever is missing, and whatever entry of the history is changed, is named, with and without a new list.
TEST(Changes, AreNamed) {
  const auto original = someExport();
  const auto named = [](ExportFiles files, const std::string& subject) {
    for (const bool isListedAnew : {false, true}) {
      if (isListedAnew) sumAnew(files);
      Findings findings;
      checkExport(files, {.now = issueTime}, findings);
      EXPECT_TRUE(findings.names(subject)) << subject << '\n' << listed(findings);
    }
  };
  for (const auto& [name, content] : original) {
    auto files = original;
    files.erase(name);
    named(files, name.starts_with("notices/") ? "notice " + name.substr(8, 64) : "file " + name);
  }
  const auto history = json::parse(original.at("history.json"));
  for (std::size_t i = 0; i < history.at("entries").as_array().size(); ++i) {
    auto changed = history;
    auto& entry = changed.at("entries").at(i).as_object();
    entry["language"] = "fr";
    auto files = original;
    files["history.json"] = json::serialize(changed);
    named(files, nameOf(entry));
  }
  auto receipt = json::parse(original.at("receipt.json"));
  receipt.at("receipt").as_object()["dct:created"] = "2023-11-14T22:13:19Z";
  auto files = original;
  files["receipt.json"] = json::serialize(receipt);
  named(files, "signature of the receipt");
}

}  // namespace
}  // namespace quillon::proof::test
