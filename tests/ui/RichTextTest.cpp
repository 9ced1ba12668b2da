#include "ui/Common/RichText/RichText.h"

#include <chrono>
#include <sstream>

#include "tests/ui/OnMainQueue.h"
#include "ui/Common/RichText/RichTextViewModel.h"

namespace quillon::test {
namespace {

// "a{b}c{iu x2 >link}d": before each run its style, bold, italic, underline, strikethrough, scale and link; nothing
// before plain text at the beginning.
std::string shown(const std::optional<AttributedText>& text) {
  if (!text) return "refused";
  std::ostringstream out;
  for (const auto& run : text->runs) {
    std::ostringstream style;
    if (run.font != TextRun::body) style << (run.font == TextRun::bold ? 'b' : 'i');
    if (run.underline) style << 'u';
    if (run.strikethrough) style << 's';
    if (run.scale != 1) style << 'x' << run.scale;
    if (run.link) style << '>' << *run.link;
    if (&run != &text->runs.front() || !style.str().empty()) out << '{' << style.str() << '}';
    out << run.text;
  }
  return out.str();
}

std::string repeated(std::string_view text, int count) {
  std::string all;
  for (int i = 0; i < count; ++i) all += text;
  return all;
}

void expect(std::initializer_list<std::pair<const char*, const char*>> cases) {
  for (const auto& [html, text] : cases) EXPECT_EQ(shown(richTextFromHtml(html)), text) << html;
}

TEST(RichText, StylesRuns) {
  expect({
      {"a<b>b<i>c</i></b><i>d<strong>e</strong></i>", "a{b}b{i}cde"},
      {"<cite>a</cite><dfn>b</dfn><var>c</var><em>d</em>", "{i}abcd"},
      {"<u>a<s>b</s></u><ins>c</ins><del>d</del><strike>e</strike>", "{u}a{us}b{u}c{s}de"},
      {"<h1>a</h1><h2>b</h2><h3>c</h3><h4>d</h4><h5>e</h5><h6>f</h6>",
       "{bx2}a\n{bx1.5}b\n{bx1.17}c\n{b}d\n{bx0.83}e\n{bx0.67}f"},
      {"<big>a<small>b</small></big>", "{x1.2}a{}b"},
      {"<span style='FONT-WEIGHT : Bold!important;font-style:oblique'>a</span>", "{i}a"},
      {"<b>a<span style='font-weight:400'>b</span></b><p style='font-weight:600'>c", "{b}a{}b\n{b}c"},
      {"<u>a<span style='text-decoration:none'>b</span></u><u style='text-decoration-line:none'>c</u>", "{u}ab{}c"},
      {"<span style=';;:x;text-decoration:underline line-through red'>a</span>", "{us}a"},
      {"<b>a</b><b>b</b><b></b>c", "{b}ab{}c"},
  });
}

TEST(RichText, KeepsLinksAsTheyStand) {
  expect({
      {"a <a href=' https://x.example/?a=1&amp;b=2 '>b <b>c</b></a>.",
       "a {u>https://x.example/?a=1&b=2}b {bu>https://x.example/?a=1&b=2}c{}."},
      {"<a href=x style='text-decoration:none'>a</a><a>b</a><a href=''>c</a>", "{>x}a{}bc"},
      {"<a href='java&#10;script:x'>a</a><a href='h&#x10ffff0;\xff'>b</a>", "a{u>h\ufffd\ufffd}b"},
  });
  EXPECT_EQ(shown(richTextFromHtml("<a href='" + std::string(2048, 'x') + "'>a")).size(), 2048 + 5);
  EXPECT_EQ(shown(richTextFromHtml("<a href='" + std::string(2049, 'x') + "'>a")), "a");
}

TEST(RichText, CollapsesWhiteSpaceAcrossElements) {
  expect({
      {"\n\n  a \t\r\n b<b> c </b> d ", "a b{b} c {}d"},
      {"<p>a <!-- x --> <i> </i> b </p> <p> b</p>", "a b\nb"},
      {"a<pre>\n  b\n\tc \n</pre> d", "a\n  b\n\tc \nd"},
      {"&nbsp;\u2003<b>&emsp;</b>a&nbsp;b\u3000\u2029<br>&nbsp;", "a\u00a0b"},
      {" &nbsp;<p>\u2028<br> ", ""},
  });
}

TEST(RichText, BreaksLinesBetweenBlocks) {
  expect({
      {"a<br>b<br><br>c<p>d<br></p><div><div>e</div></div>f", "a\nb\n\nc\nd\ne\nf"},
      {"a<hr>b<blockquote>c</blockquote><dl><dt>d<dd>e</dl>", "a\nb\nc\nd\ne"},
      {"<ul><li>a<li><p>b</p><ol start=4><li>c<li value=9>d<li>e</ol><li></ul>f",
       "• a\n• b\n    4. c\n    9. d\n    10. e\nf"},
      {"<ol><li> <li>a<b>b</b></ol><li>c", "2. a{b}b{}\n• c"},
      {"<table><caption>t</caption><tr><th>a<th>b</tr> <tr><td><p>c</p><p>d</p></td> "
       "<td></td><td>e<tr><td><td>f</table>g",
       "t\n{b}a{}\t{b}b{}\nc\nd\t\te\n\tf\ng"},
  });
}

TEST(RichText, HoldsNothingThatMakesARequestOrRuns) {
  expect({
      {"<head><title>x</title><style>x</style></head><body onload=x>a<img src=x alt=x><svg><text>x</text></svg>b",
       "ab"},
      {"a<script>x<b></script><iframe>x</iframe><object data=x>x</object><template>x</template><video>x</video>b",
       "ab"},
      {"a<noscript><img src=x>x</noscript><select><option>x</select><textarea>x</textarea><!-- x --><?x?>b", "ab"},
      {"a<p hidden>x</p><span style='display:none'>x<b>x</b></span>b", "ab"},
  });
}

TEST(RichText, RepairsWhatIsNoText) {
  expect({
      {"a\xff\xc3 \xed\xa0\x80", "a\ufffd\ufffd \ufffd\ufffd\ufffd"},
      {"&#x2BBBBBBBBBBBBBBB;&#xd800;", "\ufffd\ufffd"},
      {"a\x01\x0b\x7f&#27;&#x85;b&#127;", "a\u2026b"},
      {"\u202ea\u202db\u200fc\u2067d\u2069", "ab\u200fc\u2067d\u2069"},
      {"&lt;b&gt; &amp;amp; &copy &unknown;", "<b> &amp; © &unknown;"},
  });
}

TEST(RichText, RefusesWhatWouldTakeLongAndReadsTheRestInAMoment) {
  std::string manyFonts;
  for (int i = 0; i < 1000; ++i) manyFonts += "<font size=" + std::to_string(i) + ">";
  const std::pair<bool, std::vector<std::string>> cases[]{
      {true,
       {std::string(largestHtml, 'x'), repeated("<div>", 4096) + "x",
        repeated("<div>", 4000) + "<b>" + std::string(200'000, 'x'), repeated("<div>", 4000) + "<frameset>",
        repeated("<ul><li>", 2000) + "x", repeated("<b><div>", 1300) + repeated("</b>", 1400)}},
      {false,
       {std::string(largestHtml + 1, 'x'), repeated("<div>", 4097) + "x", repeated("<b>", 100'000) + "x",
        repeated("<a>", 80'000) + "x", repeated("<p a=\">\" ", 2000) + "x", repeated("<a b='<a b=\"", 20'000),
        repeated("<a", 100'000) + "x", "<p" + repeated(" a", 4096) + ">x",
        "<style><a x=\"</style><p" + repeated(" b", 5000) + ">", "<p>" + manyFonts + "</p>" + repeated("<p>x", 2000)}},
  };
  for (const auto& [isRead, texts] : cases) {
    for (const auto& html : texts) {
      const auto begin = std::chrono::steady_clock::now();
      EXPECT_EQ(richTextFromHtml(html).has_value(), isRead) << html.substr(0, 40);
      // A bound for the slowest build under the slowest sanitizer.
      EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(10)) << html.substr(0, 40);
    }
  }
}

struct RichTextModel : OnMainQueue<RichTextViewModel> {
  RichTextModel() {
    world.start();
    onMain([this] { model = RichTextViewModel::make(world.sdk->screens()); });
  }
  std::string converted() {
    world.settle();
    const auto text = read(&RichTextViewModel::attributedString);
    return text ? shown(text) : "absent";
  }
};

TEST_F(RichTextModel, ShowsTheLastTextAndNoneInTheMeantime) {
  world.onMain([this] { model->setHtml("<b>first</b>"); });
  EXPECT_EQ(converted(), "{b}first");
  world.onMain([this] {
    model->setHtml(repeated("slow ", 50'000));
    model->setHtml("last");
    EXPECT_FALSE(model->attributedString.get());
  });
  EXPECT_EQ(converted(), "last");
  world.onMain([this] { model->setHtml(std::string(largestHtml + 1, 'x')); });
  EXPECT_EQ(converted(), "absent");
}

TEST_F(RichTextModel, LetsObserversSetAnotherTextOrReleaseIt) {
  Observation observation;
  world.onMain([&] {
    observation = model->html.observe([this](const std::string& next) {
      if (next == "a") model->setHtml("b");
      if (next == "c") model.reset();
    });
    model->setHtml("a");
  });
  EXPECT_EQ(converted(), "b");
  onMain([&] { model->setHtml("c"); });
  EXPECT_FALSE(model);
  world.onMain([&] { observation = {}; });
}

}  // namespace
}  // namespace quillon::test
