// The page in place of a refused one, and the links that are not.
#include "ui/Common/WebView/BlockedPage.h"

#include <gtest/gtest.h>

#include <boost/json/parse.hpp>

#include "ui/Common/WebView/WebViewUrlExtractor.h"

namespace quillon::test {
namespace {

// The text of the variable in a page, as its scripts find it.
std::string addressIn(const std::string& html) {
  constexpr std::string_view opening = "<script>var BLOCKED_URL=";
  const auto begin = html.find(opening) + opening.size();
  const auto end = html.find(";</script>", begin);
  return std::string(boost::json::parse(html.substr(begin, end - begin)).as_string());
}

TEST(BlockedPage, ItsScriptsFindTheAddressWhateverItIs) {
  const BlockedPage page("<html><HEAD></header></Head ><body></head></body>");
  EXPECT_EQ(page.html(R"(a"b\c)"),
            R"(<html><HEAD></header><script>var BLOCKED_URL="a\"b\\c";</script></Head ><body></head></body>)");
  using namespace std::string_literals;
  for (const auto& address : {""s, R"(\"";alert(1)//\)"s, "</script><script>alert(1)</script>"s, "<!--<script>"s,
                              "a&lt;b&amp;"s, "\u2028\u2029\r\n\t\0\x1f\x7f"s, "https://bücher.example/日本"s}) {
    const auto html = page.html(address);
    EXPECT_EQ(addressIn(html), address);
    EXPECT_TRUE(page.isPage(html)) << html;
    EXPECT_EQ(html.find("</script>"), html.rfind("</script>")) << html;
    EXPECT_EQ(html.find_first_of("\r\n\x7f"), std::string::npos);
    EXPECT_EQ(html.find("\u2028"), std::string::npos);
  }
  EXPECT_EQ(addressIn(page.html("a\xff")), "a\uFFFD");
  EXPECT_LT(page.html(std::string(1 << 20, '<')).size(), 100'000U);
}

TEST(BlockedPage, KnowsItselfFromOtherPages) {
  const BlockedPage page = BlockedPage::own(std::nullopt, "ja");
  const auto html = page.html("https://a.example/");
  EXPECT_TRUE(page.isPage(html));
  const auto at = html.find("a.example");
  for (const std::string_view inserted : {"\"", "<", "\";alert(1);\"", R"(\\")", "</script>"}) {
    EXPECT_FALSE(page.isPage(std::string(html).insert(at, inserted))) << inserted;
  }
  EXPECT_FALSE(page.isPage(html + " "));
  EXPECT_FALSE(page.isPage(""));
  EXPECT_EQ(BlockedPage("<p>x").html("a"), R"(<script>var BLOCKED_URL="a";</script><p>x)");
}

TEST(UrlExtractor, FindsTheHostOfEveryLinkOnceInUpToAMebibyte) {
  const std::pair<std::string, std::set<std::string>> cases[]{
      {R"(<a href="https://A.example/x">a</a> <a HREF='http://b.example:80'>b</a>)", {"a.example", "b.example"}},
      {R"(<a href="https://user@a.example"><link data-href='//b.example'>)", {"a.example", "b.example"}},
      {"href=\"https://a.example/\n\" href=\"https://b.example\xff\" href=\"https://c.example/\xff\"", {"c.example"}},
      {R"(href="mailto:x@a.example" href="/path" href="#" href="" href="https://" href="a.example" href=https://b.example)",
       {}},
      {R"(href="https://[::1]/" href="https://127.0.0.1/" href="https://a b/" href="https://[::1" href="http:\\a.example")",
       {"127.0.0.1", "[::1]"}},
      {R"(href="https://a.example' href="https://b.example")", {"a.example", "b.example"}},
      {"href=\"https://bücher.example/\"", {"xn--bcher-kva.example"}},
  };
  for (const auto& [text, hosts] : cases) EXPECT_EQ(WebViewUrlExtractor::extractHosts(text), hosts) << text;
  std::string html = R"(<a href="https://a.example">)";
  html.resize(std::size_t{1} << 20, ' ');
  EXPECT_EQ(WebViewUrlExtractor::extractHosts(html).size(), 1U);
  EXPECT_EQ(WebViewUrlExtractor::extractHosts(html + ' ').size(), 0U) << "larger than a mebibyte";
}

}  // namespace
}  // namespace quillon::test
