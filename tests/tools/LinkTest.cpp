#include <gtest/gtest.h>

#include "tests/tools/ToolProcess.h"

namespace quillon::test {
namespace {

using Words = std::vector<std::string>;

TEST(LinkTest, TellsAllowedFromRefusedAddressesInBothForms) {
  struct Case {
    Words arguments;
    Words lines;
    int status = 1;
  };
  for (const auto& [arguments, lines, status] : std::vector<Case>{
           {{"--allowed", "a.example", "--allowed", "b.example", "HTTPS://A.example", "http://x.b.example/ä"},
            {"allowed\thttps://a.example/", "allowed\thttp://x.b.example/%C3%A4"},
            0},
           {{"--allowed", "a.example", "b.example", "--", "https://b.example/", "https://user@a.example/"},
            {"allowed\thttps://b.example/", "refused\tit carries a user name\thttps://user@a.example/"}},
           {{"https://a.example/\x1b[2J"},
            {R"(refused	it contains a control character or a line break	https://a.example/\x1b[2J)"}},
           {{"https://a.example/", "--allowed", "b.example"}, {"refused\tits host is not allowed\thttps://a.example/"}},
       }) {
    Words words{"link"};
    words.insert(words.end(), arguments.begin(), arguments.end());
    ToolProcess tool(words);
    EXPECT_EQ(tool.readLines(), lines);
    EXPECT_EQ(tool.wait(), status);
  }
}

}  // namespace
}  // namespace quillon::test
