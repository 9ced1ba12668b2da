#include <gtest/gtest.h>

#include "tests/tools/ToolProcess.h"

namespace quillon::test {
namespace {

TEST(LinkTest, TellsAllowedFromRefusedAddressesInBothForms) {
  const struct {
    std::vector<std::string> arguments;
    std::string output;
    int status = 1;
  } cases[] = {
      {{"link", "--allowed", "a.example", "--allowed", "b.example", "HTTPS://A.example", "http://x.b.example/ä"},
       "allowed\thttps://a.example/\nallowed\thttp://x.b.example/%C3%A4\n",
       0},
      {{"link", "--allowed", "a.example", "b.example", "--", "https://b.example/", "https://user@a.example/"},
       "allowed\thttps://b.example/\nrefused\tit carries a user name\thttps://user@a.example/\n"},
      {{"link", "https://a.example/\x1b[2J"},
       "refused\tit contains a control character or a line break\thttps://a.example/\\x1b[2J\n"},
      {{"link", "--allowed", "a.example", "--", "[https://a.example/]"},
       "refused\tit is not a complete address\t[https://a.example/]\n"},
      {{"link", "--allowed=[::1]", "--allowed", "", "--", "http://[::1]/", ""},
       "allowed\thttp://[::1]/\nrefused\tit is empty\t\n"},
      {{"link", "https://a.example/", "--allowed", "b.example"},
       "refused\tits host is not allowed\thttps://a.example/\n"},
  };
  for (const auto& [arguments, output, status] : cases) {
    const auto run = runTool(arguments);
    EXPECT_EQ(run.output, output);
    EXPECT_EQ(run.status, status);
  }
}

}  // namespace
}  // namespace quillon::test
