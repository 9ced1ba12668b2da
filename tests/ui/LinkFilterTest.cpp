#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ui/Common/WebView/LinkAddress.h"
#include "ui/Common/WebView/LinkFilter.h"

namespace quillon::test {
namespace {

using Entries = std::vector<std::string>;

// What becomes of an address: the normalised text, or the reason.
std::string verdict(const LinkFilter& filter, std::string_view address) {
  const auto link = filter.test(address);
  return link ? *link : std::string(reason(link.error()));
}

constexpr std::string_view notAllowed = "its host is not allowed";

TEST(LinkFilter, OpensWhatHasOneReadingAndRefusesTheRest) {
  const LinkFilter filter({"example.org", "bücher.example", "xn--strae-oqa.example", "127.0.0.1", "[::1]",
                           "[::ffff:1.2.3.4]", "[1:0:2:3:4:5:6:7]"});
  const std::string tooLong = "https://example.org/" + std::string(longestLink, 'a');
  std::string tooLongEncoded = "https://example.org/";
  for (int i = 0; i < 3000; ++i) tooLongEncoded += "ä";
  struct Case {
    std::string_view address;
    std::string_view verdict;
  };
  using namespace std::string_view_literals;
  for (const auto& [address, expected] : std::vector<Case>{
           // Normalised
           {"https://example.org", "https://example.org/"},
           {"  HTTPS://EXAMPLE.org/A%2fb?C=d#E  ", "https://example.org/A%2fb?C=d#E"},
           {"http://example.org:8080?q=/../", "http://example.org:8080/?q=/../"},
           {"https://example.org/ä?ö#\u2028", "https://example.org/%C3%A4?%C3%B6#%E2%80%A8"},
           {"https://example.org//evil.example/@x:1", "https://example.org//evil.example/@x:1"},
           // Grammar and bytes
           {"", "it is empty"},
           {"   ", "it is empty"},
           {tooLong, "it is longer than 8 KiB"},
           {tooLongEncoded, "it is longer than 8 KiB"},
           {"https://example.org/\xc0\xaf", "it is not valid UTF-8"},
           {"https://exam\tple.org/", "it contains a control character or a line break"},
           {"https://example.org/\n", "it contains a control character or a line break"},
           {"java\nscript:alert(1)", "it contains a control character or a line break"},
           {"https://example.org\0.evil.example/"sv, "it contains a control character or a line break"},
           {"https://example.org/\x7f", "it contains a control character or a line break"},
           {"https://example.org/a b", "it contains a space"},
           {"https://evil.example\\@example.org/", "it contains a backslash"},
           {"https:\\\\example.org/", "it contains a backslash"},
           {"example.org", "it is not a complete address"},
           {"//example.org/", "it is not a complete address"},
           {"https://example.org/%zz", "it is not a complete address"},
           {"https://[::1]example.org/", "it is not a complete address"},
           {"https://evil.example[::1]/", "it is not a complete address"},
           // Schemes
           {"mailto:privacy@example.org", "it is neither http nor https"},
           {"tel:1", "it is neither http nor https"},
           {"javascript://example.org/%0aalert(1)", "it is neither http nor https"},
           {"data:text/html,https://example.org/", "it is neither http nor https"},
           {"file://example.org/etc/passwd", "it is neither http nor https"},
           {"httpſ://example.org/", "it is neither http nor https"},
           {"https:example.org", "it names no host"},
           {"https:/example.org", "it names no host"},
           // User names and ports
           {"https://user@example.org/", "it carries a user name"},
           {"https://example.org@evil.example/", "it carries a user name"},
           {"https://example.org:80@evil.example/", "it carries a user name"},
           {"https://@example.org/", "it carries a user name"},
           {"https://example.org:/", "its port is not a plain number from 1 to 65535"},
           {"https://example.org:0/", "its port is not a plain number from 1 to 65535"},
           {"https://example.org:080/", "its port is not a plain number from 1 to 65535"},
           {"https://example.org:65536/", "its port is not a plain number from 1 to 65535"},
           {"https://example.org:18446744073709551696/", "its port is not a plain number from 1 to 65535"},
           {"https://example.org:65535/", "https://example.org:65535/"},
           // Hosts
           {"https:///example.org/", "it names no host"},
           {"https://:443/", "it names no host"},
           {"https://example%2eorg/", "its host is percent-encoded"},
           {"https://evil.example%2f.example.org/", "its host is percent-encoded"},
           {"https://example.org./", "its host has an empty part or ends in a dot"},
           {"https://.example.org/", "its host has an empty part or ends in a dot"},
           {"https://a..example.org/", "its host has an empty part or ends in a dot"},
           {"https://evil.example;.example.org/",
            "its host is not made of letters, digits and hyphens, or is too long"},
           {"https://*.example.org/", "its host is not made of letters, digits and hyphens, or is too long"},
           {"https://-a.example.org/", "its host is not made of letters, digits and hyphens, or is too long"},
           {"https://a123456789012345678901234567890123456789012345678901234567890123.example.org/",
            "its host is not made of letters, digits and hyphens, or is too long"},
           {"https://r3---sn-a.example.org/", "https://r3---sn-a.example.org/"},
           // Numbers
           {"http://127.0.0.1/", "http://127.0.0.1/"},
           {"http://0177.0.0.1/", "its host is a number that is not a plain IPv4 address"},
           {"http://0x7f.0.0.1/", "its host is a number that is not a plain IPv4 address"},
           {"http://127.0.0X1/", "its host is a number that is not a plain IPv4 address"},
           {"http://127.1/", "its host is a number that is not a plain IPv4 address"},
           {"http://2130706433/", "its host is a number that is not a plain IPv4 address"},
           {"http://localhost.0x/", "its host is a number that is not a plain IPv4 address"},
           {"http://1.2.3.4.5/", "it is not a complete address"},
           {"http://127.0.0.2/", notAllowed},
           {"http://[::1]:80/", "http://[::1]:80/"},
           {"http://[0:0::0:1]", "http://[::1]/"},
           {"http://[::FFFF:102:304]/", "http://[::ffff:1.2.3.4]/"},
           {"http://[1::2:3:4:5:6:7]/", "http://[1::2:3:4:5:6:7]/"},
           {"http://[::2]/", notAllowed},
           {"http://[::1%25lo]/", "it is not a complete address"},
           {"http://[v1.a]/", "its host in brackets is not a plain IPv6 address"},
           // International names
           {"https://bücher.example/", "https://xn--bcher-kva.example/"},
           {"https://BÜCHER.Example/", "https://xn--bcher-kva.example/"},
           {"https://XN--BCHER-KVA.example/", "https://xn--bcher-kva.example/"},
           {"https://straße.example/", "https://xn--strae-oqa.example/"},
           {"https://strasse.example/", notAllowed},
           {"https://bu\u0308cher.example/", "its host is not a sound international name"},
           {"https://ｅxample.org/", "its host is not a sound international name"},
           {"https://ex\u00adample.org/", "its host is not a sound international name"},
           {"https://example。org/", "its host is not a sound international name"},
           {"https://evil．example.org/", "its host is not a sound international name"},
           {"https://example.org\u200b/", "its host is not a sound international name"},
           {"https://a\u200db.example.org/", "its host is not a sound international name"},
           {"https://ＬＯＣＡＬ.example/", "its host is not a sound international name"},
           {"https://\u212A.example.org/", "its host is not a sound international name"},
           {"https://xn--example-.org/", "its host is not made of letters, digits and hyphens, or is too long"},
           {"https://xn--0.example.org/", "its host is not a sound international name"},
           {"https://xn--n3h.example.org/", "its host is not a sound international name"},
           {"https://ex\u0430mple.org/", notAllowed},
       }) {
    EXPECT_EQ(verdict(filter, address), expected) << address;
    if (!expected.starts_with("http")) continue;
    EXPECT_EQ(verdict(filter, expected), expected) << "normalised once more";
  }
  // Capitals beyond ASCII, as far as they are taken for their small letters.
  const LinkFilter letters({"àþāğĺňœşÿź.example", "αωяёй.example"});
  EXPECT_TRUE(letters.test("https://ÀÞĀĞĹŇŒŞŸŹ.example/"));
  EXPECT_TRUE(letters.test("https://ΑΩЯЁЙ.example/"));
  EXPECT_EQ(verdict(LinkFilter({"i.example"}), "https://İ.example/"), "its host is not a sound international name");
}

TEST(LinkFilter, AllowsWhatAnEntryNamesAndItsSubDomains) {
  struct Case {
    Entries entries;
    std::vector<std::string> allowed;
    std::vector<std::string> refused;
  };
  Entries many(LinkFilter::mostEntries, "filler.example");
  many.push_back("late.example");
  for (const auto& [entries, allowed, refused] : std::vector<Case>{
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
