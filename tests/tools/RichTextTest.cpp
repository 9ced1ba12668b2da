#include <gtest/gtest.h>

#include <boost/json.hpp>

#include "tests/support/TemporaryFolder.h"
#include "tests/tools/ToolProcess.h"

namespace quillon::test {
namespace {

TEST(RichTextCommand, PrintsTheRunsAsJsonOrFails) {
  const TemporaryFolder folder;
  setFileBytes(folder.path() / "text", "<h3>\"a\"</h3>b\x01<a href='https://x.example/?\"'><s>c</s></a>\n");
  setFileBytes(folder.path() / "large", std::string((256 << 10) + 1, 'x'));
  const auto good = runTool({"richtext", folder.path() / "text"});
  EXPECT_EQ(good.status, 0);
  EXPECT_EQ(boost::json::parse(good.output), boost::json::parse(R"([
    {"text": "\"a\"\n", "font": "bold", "scale": 1.17, "underline": false, "strikethrough": false, "link": null},
    {"text": "b", "font": "body", "scale": 1, "underline": false, "strikethrough": false, "link": null},
    {"text": "c", "font": "body", "scale": 1, "underline": true, "strikethrough": true,
     "link": "https://x.example/?\""}])"));
  for (const auto* name : {"large", "missing", "."}) {
    const auto [status, output, errors] = runTool({"richtext", folder.path() / name});
    EXPECT_EQ(status, 1) << name;
    EXPECT_EQ(output, "");
    EXPECT_EQ(std::ranges::count(errors, '\n'), 1) << errors;
  }
}

}  // namespace
}  // namespace quillon::test
