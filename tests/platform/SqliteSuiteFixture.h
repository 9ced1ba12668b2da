// A suite in its own folder, with access to its file and reports.
#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <map>

#include "platform/linux/SqliteDatabase.h"
#include "platform/linux/SqliteStore.h"
#include "platform/linux/StoredValue.h"
#include "tests/support/Contains.h"
#include "tests/support/TemporaryFolder.h"

namespace quillon {

using namespace std::chrono_literals;
using test::contains;
using test::fileBytes;
using test::modeOf;
using test::setFileBytes;

inline std::expected<void, std::string> put(KeyValueSuite& suite, const std::string& key, PropertyValue value) {
  return suite.update([&](const SuiteEntries&) { return SuiteChanges{{key, value}}; });
}

// "key=text key=text", sorted, for readable failures.
inline std::string listed(const KeyValueSuite& suite) {
  const auto entries = suite.snapshot();
  const std::map<std::string, PropertyValue> sorted(entries->begin(), entries->end());
  std::string list;
  for (const auto& [key, value] : sorted) list += (list.empty() ? "" : " ") + key + "=" + toStored(value).text;
  return list;
}

class SqliteSuiteTest : public testing::Test {
 protected:
  // A new store in every call, as another process would have.
  std::shared_ptr<KeyValueSuite> open(const std::filesystem::path& folder) {
    auto opened = SqliteStore(folder).open("s", report());
    if (opened) return *opened;
    reports_.push_back(opened.error());
    return nullptr;
  }
  std::shared_ptr<KeyValueSuite> open() { return open(folder_); }

  KeyValueStore::Report report() {
    return [this](auto, std::string message) { reports_.push_back(std::move(message)); };
  }

  // A healthy store with this entry takes the place of the file.
  void replaceByOneWith(const std::string& key) {
    const auto elsewhere = temporary_.path() / "elsewhere";
    EXPECT_TRUE(put(*open(elsewhere), key, true));
    std::filesystem::rename(elsewhere / "s.sqlite", file_);
  }

  // Runs SQL in the sqlite3 shell.
  std::string shell(const char* sql) const {
    auto database = SqliteDatabase::open(file_);
    if (!database) return database.error().text;
    const auto answer = database->ask(sql);
    return answer ? *answer : answer.error().text;
  }

  // Overwrites the file in place.
  void overwrite(const std::string& bytes) const {
    std::fstream(file_, std::ios::binary | std::ios::in | std::ios::out) << bytes;
  }

  std::vector<std::filesystem::path> keptAside() const {
    std::vector<std::filesystem::path> kept;
    for (const auto& entry : std::filesystem::directory_iterator(folder_)) {
      const auto name = entry.path().string();
      if (name.find(".damaged-") != std::string::npos && !name.ends_with("-journal")) kept.push_back(entry.path());
    }
    return kept;
  }

  // Whether a report contains the text.
  testing::AssertionResult reported(std::string_view part) const {
    std::string all;
    for (const auto& report : reports_) all += report + "\n";
    return contains(all, part);
  }

  test::TemporaryFolder temporary_{test::TemporaryFolder::fastParent()};
  const std::filesystem::path folder_ = temporary_.path() / "app";
  const std::filesystem::path file_ = folder_ / "s.sqlite";
  std::vector<std::string> reports_;
};

}  // namespace quillon
