// Equality and hashing of records.
#include <gtest/gtest.h>

#include <functional>

#include "core/Configuration/Codec.h"
#include "tests/core/Configuration/CompleteDocuments.h"

namespace quillon {
namespace {

class RecordEquality : public testing::Test {
 protected:
  static MainConfiguration read(std::string_view json) { return decode<MainConfiguration>(json).value(); }
  static std::size_t hash(const MainConfiguration& record) { return std::hash<MainConfiguration>{}(record); }

  const MainConfiguration complete_ = read(completeDocument<MainConfiguration>);
};

TEST_F(RecordEquality, CoversTheFieldsThatNoDocumentCarries) {
  // Each of them lies somewhere else in the tree of records.
  MainConfiguration mapped = complete_;
  mapped.purposes->at(0).isATTMapped = true;
  MainConfiguration described = complete_;
  described.purposes->at(0).attDescription.emplace();
  MainConfiguration prompted = complete_;
  prompted.permissions->at(0).isSettingsPromptEnabled = false;
  MainConfiguration translated = complete_;
  translated.bannerConfig->categories.at("default").translations.emplace();

  for (const MainConfiguration* changed : {&mapped, &described, &prompted, &translated}) {
    EXPECT_FALSE(*changed == complete_);
    EXPECT_NE(hash(*changed), hash(complete_));
  }
}

TEST_F(RecordEquality, HashesEqualRecordsEqually) {
  const MainConfiguration copy = complete_;
  EXPECT_TRUE(copy == complete_);
  EXPECT_EQ(hash(copy), hash(complete_));
  EXPECT_NE(hash(complete_), hash(MainConfiguration{}));
}

TEST_F(RecordEquality, DependsOnTheOrderOfElementsButNotOfKeys) {
  const MainConfiguration record =
      read(R"({"i18n":{"de":{"a":"1","b":"2"},"en":null},"purposes":[{},{"purpose_id":1}]})");
  const MainConfiguration keys =
      read(R"({"purposes":[{},{"purpose_id":1}],"i18n":{"en":null,"de":{"b":"2","a":"1"}}})");
  const MainConfiguration elements =
      read(R"({"i18n":{"de":{"a":"1","b":"2"},"en":null},"purposes":[{"purpose_id":1},{}]})");
  EXPECT_TRUE(record == keys);
  EXPECT_EQ(hash(record), hash(keys));
  EXPECT_FALSE(record == elements);
  EXPECT_NE(hash(record), hash(elements));
}

TEST_F(RecordEquality, TellsAbsentFromEmpty) {
  EXPECT_FALSE(read(R"({"id":""})") == read("{}"));
  EXPECT_FALSE(read(R"({"purposes":[]})") == read("{}"));
  EXPECT_FALSE(read(R"({"i18n":{"de":{}}})") == read(R"({"i18n":{"de":null}})"));
  EXPECT_NE(hash(read(R"({"id":""})")), hash(read("{}")));
}

}  // namespace
}  // namespace quillon
