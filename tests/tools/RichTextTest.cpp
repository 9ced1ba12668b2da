#include <gtest/gtest.h>

#include <boost/json.hpp>

#include "tests/support/TemporaryFolder.h"
#include "tests/tools/ToolProcess.h"

namespace quillon::test {
namespace {

struct RichTextCommand : testing::Test {
  int run(const std::string& name) {
    const auto errors = folder.path() / "errors";
    ToolProcess tool({"richtext", folder.path() / name}, errors);
    output.clear();
    for (const auto& line : tool.readLines()) output += line;
    return tool.wait().value_or(-1);
  }

  TemporaryFolder folder;
  std::string output;
};

TEST_F(RichTextCommand, PrintsTheRunsAsJson) {
  setFileBytes(folder.path() / "text", "<h3>\"a\"</h3>b\x01<a href='https://x.example/?\"'><s>c</s></a>\n");
  EXPECT_EQ(run("text"), 0);
  EXPECT_EQ(boost::json::parse(output), boost::json::parse(R"([
    {"text": "\"a\"\n", "font": "bold", "scale": 1.17, "underline": false, "strikethrough": false, "link": null},
    {"text": "b", "font": "body", "scale": 1, "underline": false, "strikethrough": false, "link": null},
    {"text": "c", "font": "body", "scale": 1, "underline": true, "strikethrough": true,
     "link": "https://x.example/?\""}])"));
  setFileBytes(folder.path() / "blank", " <br>");
  EXPECT_EQ(run("blank"), 0);
  EXPECT_EQ(output, "[]");
}

TEST_F(RichTextCommand, FailsWhenAFileIsRefusedOrCannotBeRead) {
  setFileBytes(folder.path() / "large", std::string((256 << 10) + 1, 'x'));
  for (const auto* name : {"large", "missing", "."}) {
    EXPECT_EQ(run(name), 1) << name;
    EXPECT_EQ(output, "");
  }
  const auto errors = fileBytes(folder.path() / "errors");
  EXPECT_EQ(std::ranges::count(errors, '\n'), 3) << errors;
}

}  // namespace
}  // namespace quillon::test
