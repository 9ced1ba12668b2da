#include <gtest/gtest.h>

#include "ui/Common/WebView/WebViewUrlExtractor.h"

namespace quillon::test {
namespace {

TEST(UrlExtractor, FindsTheHostOfEveryLinkOnce) {
  const struct {
    std::string html;
    std::set<std::string> hosts;
  } cases[]{
      {R"(<a href="https://A.example/x">a</a> <a HREF='http://b.example:80'>b</a>)", {"a.example", "b.example"}},
      {R"(<a href="https://a.example/1"><a href="https://A.EXAMPLE/2?q#f">)", {"a.example"}},
      {R"(<a href="https://user@a.example"><link data-href='//b.example'>)", {"a.example", "b.example"}},
      {"href=\"https://a.example/\n\" href=\"https://b.example\xff\" href=\"https://c.example/\xff\"", {"c.example"}},
      {R"(href="mailto:x@a.example" href="/path" href="#" href="" href="https://" href="a.example" href=https://b.example)",
       {}},
      {R"(href="https://[::1]/" href="https://127.0.0.1/" href="https://a b/" href="https://[::1" href="http:\\a.example")",
       {"127.0.0.1", "[::1]"}},
      {R"(href="https://a.example' href="https://b.example")", {"a.example", "b.example"}},
      {"href=\"https://bücher.example/\"", {"xn--bcher-kva.example"}},
  };
  for (const auto& one : cases) EXPECT_EQ(WebViewUrlExtractor::extractHosts(one.html), one.hosts) << one.html;
}

TEST(UrlExtractor, ReadsNothingOfATextLargerThanAMebibyte) {
  std::string html = R"(<a href="https://a.example">)";
  html.resize(std::size_t{1} << 20, ' ');
  EXPECT_EQ(WebViewUrlExtractor::extractHosts(html).size(), 1U);
  EXPECT_EQ(WebViewUrlExtractor::extractHosts(html + ' ').size(), 0U);
}

}  // namespace
}  // namespace quillon::test
