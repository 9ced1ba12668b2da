// The standards' own examples, and what is refused of strings and vendor lists.
#include <gtest/gtest.h>

#include "signals/Gpp/GppString.h"
#include "signals/Records/RecordBits.h"
#include "signals/VendorList/VendorList.h"
#include "tests/signals/VendorListOf.h"

namespace quillon::signals::test {
namespace {

constexpr std::string_view kTc = "CQSbk4AQSbk4ANwAAAENAwCgAAAAAAAAAAYgACPAAAAA";
constexpr std::string_view kDisclosed = "IDKQA4AAgAKAGQAygAAA";
constexpr std::string_view kPublisher = "YAAAAAAAAAAA";
constexpr std::string_view kEarlierTc = "CPXxRfAPXxRfAAfKABENB-CgAAAAAAAAAAYgAAAAAAAA";

// Why there is no value; "none" when there is one.
template <class T>
std::string errorOf(const std::expected<T, std::string>& result) {
  return result ? "none" : result.error();
}

std::string joined(std::initializer_list<std::string_view> parts, char delimiter) {
  std::string text;
  for (const auto part : parts) (text.empty() ? text : text += delimiter) += part;
  return text;
}

TEST(StringsTest, ExamplesOfTheStandardsAreReadAndWrittenByteForByte) {
  for (const auto& text :
       {std::string(kTc), joined({kTc, kDisclosed}, '.'), joined({kTc, kDisclosed, kPublisher}, '.')}) {
    const auto tc = decodeTcString(text);
    ASSERT_TRUE(tc) << tc.error();
    EXPECT_EQ(encode(*tc), text);
  }
  for (const auto& text : {joined({"DBABM", kEarlierTc}, '~'), joined({"DBACNY", kEarlierTc, "1YNN"}, '~'),
                           joined({"DBABjw", kEarlierTc, "1YNN"}, '~')}) {
    const auto gpp = decodeGppString(text);
    ASSERT_TRUE(gpp) << gpp.error();
    EXPECT_EQ(encode(*gpp), text);
  }
  EXPECT_EQ(decodeTcString(joined({kTc, kPublisher, kDisclosed}, '.')),
            decodeTcString(joined({kTc, kDisclosed, kPublisher}, '.')))
      << "in any order";
}

TEST(StringsTest, RangesOutOfOrderAreASet) {
  BitWriter writer;
  writer.write(2, 12);
  for (const unsigned id : {9U, 4U}) {
    writer.write(0, 1);
    writer.write(id, 16);
  }
  auto reader = BitReader::over(std::move(writer).finish(6)).value();
  IdBudget budget;
  EXPECT_EQ(readRanges(reader, budget), (Ids{4, 9}));
}

TEST(StringsTest, UnsoundStringsAreRefusedWithTheirPlace) {
  const std::pair<std::string, std::string> tcCases[] = {
      {"", "core.Version: the text ends too early"},
      {std::string(kTc.substr(0, 40)), "core.VendorLegitimateInterest: the text ends too early"},
      {std::string(kTc).append("A="), "core: character 46 is not base64url"},
      {std::string(kTc).append("AAB"), "core: more follows the last field"},
      {std::string(kTc).append("."), "a segment has no type"},
      {std::string(kTc).append(".QAAA"), "a segment has the unknown type 2"},
      {joined({kTc, kDisclosed, kDisclosed}, '.'), "disclosedVendors: is there twice"},
      {joined({kTc, "IAAwAQABA"}, '.'), "disclosedVendors.DisclosedVendors: an ID is larger than MaxVendorId"},
  };
  for (const auto& [text, error] : tcCases) EXPECT_EQ(errorOf(decodeTcString(text)), error) << text;
  const std::pair<std::string, std::string> gppCases[] = {
      {"DBABL", "section 7: is missing"},
      {"DBABL~BAAgAAAAAABA", "usnat.Version: is 1; only 2 is known"},
      {"DBABRg~BAgAABA.Q", "usva: has no sub-section"},
      {joined({"DBABM", kTc, "1YNN"}, '~'), "more sections follow than the header lists"},
      {"DBABT~1Y\"N", "section 6: is no text of a section"},
  };
  for (const auto& [text, error] : gppCases) EXPECT_EQ(errorOf(decodeGppString(text)), error) << text;
}

// As many ranges of everybody as fit would stand for three billion IDs.
TEST(StringsTest, RangesOfEverybodyOverAndOverAreRefused) {
  BitWriter writer;
  const auto core = writeRecord(Record(tcCore), 6).value();
  auto reader = BitReader::over(core).value();
  for (unsigned bit = 0; bit < 213 + 34; ++bit) writer.write(reader.read(1), 1);
  writer.write(40, 12);
  for (unsigned restriction = 0; restriction < 40; ++restriction) {
    writer.write(2 << 2, 8);
    writer.write(1, 12);
    writer.write(1, 1);
    writer.write(1, 16);
    writer.write(65535, 16);
  }
  EXPECT_EQ(errorOf(decodeTcString(std::move(writer).finish(24))),
            "core.PubRestrictions: the ranges stand for more than a million IDs");
  EXPECT_EQ(errorOf(decodeTcString(std::string(1'000'000, 'C'))), "the string is longer than 128 KiB");
  EXPECT_EQ(errorOf(decodeGppString(std::string(1'000'000, 'D'))), "the string is longer than 128 KiB");
}

TEST(StringsTest, ValuesThatDoNotFitAreNotWritten) {
  TcString tc;
  tc.core.set("CmpId", std::int64_t{4096});
  EXPECT_EQ(errorOf(encode(tc)), "core.CmpId: 4096 does not fit into 12 bits");
  tc = {};
  tc.core.set("PurposesConsent", Ids{25});
  EXPECT_EQ(errorOf(encode(tc)), "core.PurposesConsent: holds an ID that is not from 1 to 24");
}

TEST(VendorListTest, FindsVendorsThatStillTakePart) {
  const auto list = readVendorList(vendorListOf(
      R"("7":{"id":7,"name":"Ads","purposes":[1,3],"legIntPurposes":[7],"flexiblePurposes":[7],"overflow":{}},
         "8":{"id":8,"name":"Gone","purposes":[1],"deletedDate":"2024-02-28T00:00:00Z"})"));
  ASSERT_TRUE(list) << list.error();
  EXPECT_NE(list->vendor(7), nullptr);
  EXPECT_EQ(list->vendor(8), nullptr);
}

TEST(VendorListTest, ContradictionsRefuseTheList) {
  const std::pair<const char*, const char*> cases[] = {
      {R"("7":{"id":8,"name":""})", "vendors.8: has the ID 8"},
      {R"("0":{"id":0,"name":""})", "vendors.0: the ID 0 is not from 1 to 65535"},
      {R"("7":{"id":7,"name":"","purposes":[12]})", "vendors.7: names a purpose that the list does not have"},
      {R"("7":{"id":7,"name":"","purposes":[2],"legIntPurposes":[2]})", "vendors.7: declares a purpose twice"},
      {R"("7":{"id":7,"name":"","flexiblePurposes":[2]})", "vendors.7: does not declare a flexible purpose"},
      {R"("7":{"id":7,"name":"","specialFeatures":[3]})",
       "vendors.7: names a special feature that the list does not have"},
      {R"("7":{"id":7,"name":"","features":[-9]})", "vendors.7: declares an ID that is not from 1 to 64"},
      {R"("7":{"id":7,"name":""},"7":{"id":7,"name":""})", "vendors.7: is there twice"},
      {R"("7":{"id":7})", "vendors.7.name: is required"},
  };
  for (const auto& [vendors, error] : cases) {
    EXPECT_EQ(errorOf(readVendorList(vendorListOf(vendors))), error) << vendors;
  }
  auto document = vendorListOf("");
  document.replace(document.find("\":3,"), 4, "\":2,");
  EXPECT_EQ(errorOf(readVendorList(document)), "gvlSpecificationVersion: only 3 is known");
}

}  // namespace
}  // namespace quillon::signals::test
