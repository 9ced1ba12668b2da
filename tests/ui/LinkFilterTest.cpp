#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ui/Common/WebView/LinkAddress.h"
#include "ui/Common/WebView/LinkFilter.h"

namespace quillon::test {
namespace {

using Texts = std::vector<std::string>;

// What becomes of an address: the normalised text, or the reason.
std::string verdict(const LinkFilter& filter, std::string_view address) {
  const auto link = filter.test(address);
  return link ? *link : std::string(reason(link.error()));
}

constexpr std::string_view notAllowed = "its host is not allowed";

TEST(LinkFilter, OpensWhatHasOneReadingAndRefusesTheRest) {
  const LinkFilter filter({"example.org", "bücher.example", "xn--strae-oqa.example", "127.0.0.1", "[::1]",
                           "[::ffff:1.2.3.4]", "[1:0:2:3:4:5:6:7]", "[1:0:0:2::3]"});
  for (const auto& [address, normalised] : std::initializer_list<std::pair<std::string_view, std::string_view>>{
           {"https://example.org", "https://example.org/"},
           {"  HTTPS://EXAMPLE.org/A%2fb?C=d#E  ", "https://example.org/A%2fb?C=d#E"},
           {"http://example.org:8080?q=/../", "http://example.org:8080/?q=/../"},
           {"https://example.org/ä?ö#\u2028", "https://example.org/%C3%A4?%C3%B6#%E2%80%A8"},
           {"https://example.org//evil.example/@x:1", "https://example.org//evil.example/@x:1"},
           {"https://example.org:65535/", "https://example.org:65535/"},
           {"https://r3---sn-a.example.org/", "https://r3---sn-a.example.org/"},
           {"http://127.0.0.1/", "http://127.0.0.1/"},
           {"http://[::1]:80/", "http://[::1]:80/"},
           {"http://[0:0::0:1]", "http://[::1]/"},
           {"http://[::FFFF:102:304]/", "http://[::ffff:1.2.3.4]/"},
           {"http://[1::2:3:4:5:6:7]/", "http://[1:0:2:3:4:5:6:7]/"},
           {"http://[1:0:0:2:0:0:0:3]/", "http://[1:0:0:2::3]/"},
           {"https://example.org/[a]{b}?c=[1]|2#{d}", "https://example.org/%5Ba%5D%7Bb%7D?c=%5B1%5D%7C2#%7Bd%7D"},
           {"https://_dmarc.my_shop.example.org/", "https://_dmarc.my_shop.example.org/"},
           {"https://BÜCHER.Example/", "https://xn--bcher-kva.example/"},
           {"https://XN--BCHER-KVA.example/", "https://xn--bcher-kva.example/"},
           {"https://straße.example/", "https://xn--strae-oqa.example/"},
       }) {
    EXPECT_EQ(verdict(filter, address), normalised) << address;
    EXPECT_EQ(verdict(filter, normalised), normalised) << "normalised once more";
  }
  std::string encoded = "https://example.org/";
  while (encoded.size() < longestLink / 2) encoded += "ä";
  using namespace std::string_literals;
  for (const auto& [reason, addresses] : std::initializer_list<std::pair<std::string_view, Texts>>{
           {"it is empty", {"", "   "}},
           {"it is longer than 8 KiB", {"https://example.org/" + std::string(longestLink, 'a'), encoded}},
           {"it is not valid UTF-8", {"https://example.org/\xc0\xaf"}},
           {"it contains a control character or a line break",
            {"https://exam\tple.org/", "https://example.org/\n", "java\nscript:alert(1)",
             "https://example.org\0.evil.example/"s, "https://example.org/\x7f"}},
           {"it contains a space", {"https://example.org/a b"}},
           {"it contains a backslash", {"https://evil.example\\@example.org/", "https:\\\\example.org/"}},
           {"it is not a complete address",
            {"example.org", "//example.org/", "https://[::1]example.org/", "https://evil.example[::1]/"}},
           {"it contains a percent sign that no two hexadecimal digits follow",
            {"https://example.org/%zz", "https://example.org/foo%", "https://example.org/%1"}},
           {"it contains a character that an address must write percent-encoded",
            {"https://example.org/?\"", "https://example.org/<b>", "https://exa|mple.org/"}},
           {"it is neither http nor https",
            {"mailto:privacy@example.org", "javascript://example.org/%0aalert(1)",
             "data:text/html,https://example.org/", "file://example.org/etc/passwd", "httpſ://example.org/"}},
           {"it names no host", {"https:example.org", "https:/example.org", "https:///example.org/", "https://:443/"}},
           {"it carries a user name",
            {"https://user@example.org/", "https://example.org@evil.example/", "https://example.org:80@evil.example/",
             "https://@example.org/"}},
           {"its port is not a plain number from 1 to 65535",
            {"https://example.org:/", "https://example.org:0/", "https://example.org:080/",
             "https://example.org:65536/", "https://example.org:18446744073709551696/"}},
           {"its host is percent-encoded", {"https://example%2eorg/", "https://evil.example%2f.example.org/"}},
           {"its host has an empty part or ends in a dot",
            {"https://example.org./", "https://.example.org/", "https://a..example.org/"}},
           {"its host is not made of letters, digits, hyphens and underscores, or is too long",
            {"https://evil.example;.example.org/", "https://*.example.org/", "https://-a.example.org/",
             "https://xn--example-.org/", "https://" + std::string(64, 'a') + ".example.org/"}},
           {"its host is a number that is not a plain IPv4 address",
            {"http://0177.0.0.1/", "http://0x7f.0.0.1/", "http://127.0.0X1/", "http://127.1/", "http://2130706433/",
             "http://localhost.0x/"}},
           {"its host in brackets is not a plain IPv6 address", {"http://[v1.a]/"}},
           {"its host is not a sound international name",
            {"https://bu\u0308cher.example/", "https://ｅxample.org/", "https://ex\u00adample.org/",
             "https://example。org/", "https://evil．example.org/", "https://example.org\u200b/",
             "https://a\u200db.example.org/", "https://ＬＯＣＡＬ.example/", "https://\u212A.example.org/",
             "https://xn--0.example.org/", "https://xn--n3h.example.org/"}},
           {notAllowed,
            {"http://127.0.0.2/", "http://[::2]/", "https://strasse.example/", "https://ex\u0430mple.org/"}},
       }) {
    for (const auto& address : addresses) EXPECT_EQ(verdict(filter, address), reason) << address;
  }
  // Which rule meets these first is a matter of the grammar's release.
  for (const char* address : {"http://[::1%25lo]/", "http://1.2.3.4.5/"}) {
    EXPECT_TRUE(verdict(filter, address).starts_with("it")) << address;
  }
  // Capitals beyond ASCII, as far as they are taken for their small letters.
  const LinkFilter letters({"àþāğĺňœşÿź.example", "αωяёй.example"});
  EXPECT_TRUE(letters.test("https://ÀÞĀĞĹŇŒŞŸŹ.example/"));
  EXPECT_TRUE(letters.test("https://ΑΩЯЁЙ.example/"));
  EXPECT_EQ(verdict(LinkFilter({"i.example"}), "https://İ.example/"), "its host is not a sound international name");
}

TEST(LinkFilter, AllowsWhatAnEntryNamesAndItsSubDomains) {
  Texts many(LinkFilter::mostEntries, "filler.example");
  many.push_back("late.example");
  for (const auto& [entries, allowed, refused] : std::initializer_list<std::tuple<Texts, Texts, Texts>>{
           {{}, {}, {"example.org"}},
           {{"example.org"},
            {"example.org", "sub.example.org", "a.b.example.org"},
            {"badexample.org", "org", "example"}},
           {{"EXAMPLE.org"}, {"example.org"}, {}},
           {{"https://Example.org/path?q"}, {"example.org", "sub.example.org"}, {"example.org.evil.example"}},
           {{"//example.org", "ftp://files.example:21"}, {"example.org", "files.example"}, {}},
           {{"org"}, {"org", "example.org"}, {"example.com"}},
           {{"", " ", ".", "/", "https://", "https:///x"}, {}, {"example.org"}},
           {{".example.org", "*.example.org", "example.org.", "example.org/path", "example.org:443", " example.org",
             "https://*.example.org/", "example%2eorg", "example.org\n"},
            {},
            {"example.org", "sub.example.org"}},
           {{"1.2.3.4", "http://[::1]:8080/"}, {"1.2.3.4", "[::1]"}, {"1.2.3.5", "[::2]"}},
           {many, {"filler.example"}, {"late.example"}},
       }) {
    const LinkFilter filter(entries);
    const auto name = entries.empty() ? std::string("no entries") : entries.front();
    for (const auto& host : allowed) EXPECT_EQ(verdict(filter, "https://" + host), "https://" + host + "/") << name;
    for (const auto& host : refused) EXPECT_EQ(verdict(filter, "https://" + host), notAllowed) << name;
  }
}

}  // namespace
}  // namespace quillon::test
