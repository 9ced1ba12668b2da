#include "ui/Common/Labels/Labels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "ui/Common/Labels/Languages.h"
#include "ui/Common/WebView/BlockedPage.h"

namespace quillon::test {
namespace {

std::multiset<std::string_view> placesIn(std::string_view text) {
  std::multiset<std::string_view> places;
  for (auto at = text.find('%'); at != std::string_view::npos; at = text.find('%', at + 1)) {
    places.insert(text.substr(at, 2));
  }
  return places;
}

// What is the same word in both languages.
const std::set<std::pair<std::string_view, Label>> sameAsEnglish{
    {"de", Label::details}, {"nl", Label::details}, {"es", Label::no}, {"it", Label::no}};

// That no language lacks one is seen by the compiler.
TEST(Labels, EveryTextOfEveryLanguageIsTranslatedAndFit) {
  for (const LabelLanguage& language : labelLanguages()) {
    for (std::size_t i = 0; i < labelKeys.size(); ++i) {
      SCOPED_TRACE(std::string(language.code) + " " + std::string(labelKeys[i]));
      const auto label = static_cast<Label>(i);
      const std::string_view text = language.text(label);
      const std::string_view english = englishLabels().text(label);
      EXPECT_EQ(placesIn(text), placesIn(english));
      if (language.code != "en" && (label < Label::twoSentences || label > Label::hint)) {
        EXPECT_EQ(text == english, sameAsEnglish.contains({language.code, label})) << text;
      }
      // Some of them are taken for HTML.
      EXPECT_EQ(text.find_first_of("<&\r\n"), std::string_view::npos) << text;
      EXPECT_FALSE(text.starts_with(' ') || text.ends_with(' ')) << '"' << text << '"';
    }
    // Those who choose must be able to tell one from the other.
    for (const auto& [one, other] : {std::pair(Label::accept, Label::reject),
                                     {Label::accepted, Label::rejected},
                                     {Label::selectAll, Label::unselectAll},
                                     {Label::allowed, Label::notAllowed},
                                     {Label::toggleHintWhenOff, Label::toggleHintWhenOn},
                                     {Label::yes, Label::no},
                                     {Label::saved, Label::notSaved},
                                     {Label::expandHint, Label::collapseHint}}) {
      EXPECT_NE(language.text(one), language.text(other)) << language.code;
    }
  }
}

TEST(Labels, ALanguageIsFoundByItsRegionsAndOtherNames) {
  const std::pair<std::string_view, std::string_view> cases[] = {
      {"de-AT", "de"},      {"pt_BR", "pt"}, {"zh", "zh-hans"}, {"zh-Hans-HK", "zh-hans"},
      {"zh-TW", "zh-hant"}, {"nn-NO", "nb"}, {"no", "nb"},      {"zh-Hant-TW", "zh-hant"},
      {"zh-hk", "zh-hant"}, {"iw-IL", "he"}, {"sw", "none"},    {"", "none"},
      {"-", "none"},        {"deu", "none"}, {"xx-de", "none"}};
  for (const auto& [code, expected] : cases) {
    const LabelLanguage* found = labelLanguage(code);
    EXPECT_EQ(found ? found->code : "none", expected) << code;
  }
}

TEST(Labels, AConfiguredTableIsCompletedLabelByLabelByOurs) {
  BannerConfig banner;
  banner.translations = Translations{{"de", LocalizedText{{"accept", "Einverstanden"}, {"reject", ""}}},
                                     {"de-at", LocalizedText{{"close", "Zumachen"}}},
                                     {"en", LocalizedText{{"close", "Shut"}}},
                                     {"fr", std::nullopt},
                                     {"sw", LocalizedText{{"close", "Funga"}}}};
  const std::tuple<const char*, Label, const char*, const char*> cases[] = {
      {"de-at", Label::close, "Zumachen", "de-at"}, {"de-at", Label::accept, "Einverstanden", "de"},
      {"de-at", Label::reject, "Ablehnen", "de"},   {"fr", Label::close, "Fermer", "fr"},
      {"en-gb", Label::close, "Shut", "en"},        {"sw", Label::close, "Funga", "sw"},
      {"sw", Label::accept, "Accept", "en"}};
  for (const auto& [language, label, text, in] : cases) {
    const LabelText found = labelText(label, banner, language);
    EXPECT_EQ(found.text, text) << language;
    EXPECT_EQ(found.language, in) << text;
  }
}

TEST(Labels, TwoTextsAreJoinedAsTheLanguageDoesIt) {
  BannerConfig broken;
  broken.translations = Translations{{"ja", LocalizedText{{"two_sentences", "%1"}}}};
  const auto sentences = [&](const char* first, const char* second, const char* language) {
    return joined(Label::twoSentences, first, second, broken, language);
  };
  EXPECT_EQ(sentences("A", "B", "en"), "A. B");
  EXPECT_EQ(sentences("許可", "変更", "ja"), "許可。変更") << "the configured pattern lacks a place";
  EXPECT_EQ(sentences("क।", "ख", "hi"), "क। ख");
  EXPECT_EQ(sentences("", "B", "ja"), "B");
  EXPECT_EQ(joined(Label::hint, "kaksoisnapauttamalla", "Laajenna", std::nullopt, "fi"),
            "Laajenna kaksoisnapauttamalla");
}

TEST(Labels, TheBlockedPageIsInTheLanguageWhateverIsConfigured) {
  BannerConfig banner;
  banner.translations = Translations{{"de", LocalizedText{{"page_blocked", "</h1><script>\"&{{language}}"}}}};
  const std::string german = BlockedPage::own(banner, "de-at").html("https://a.example/");
  EXPECT_TRUE(german.contains("<html lang=\"de\" dir=\"auto\">")) << german;
  EXPECT_TRUE(german.contains("&lt;/h1&gt;&lt;script&gt;&quot;&amp;")) << german;
  EXPECT_TRUE(german.contains("aria-label=\"Gesperrte Adresse\"")) << german;
  for (const LabelLanguage& language : labelLanguages()) {
    const std::string page = BlockedPage::own(std::nullopt, language.code).html("https://a.example/");
    EXPECT_TRUE(page.contains("<html lang=\"" + std::string(language.code) + '"')) << page;
    EXPECT_TRUE(page.contains(language.text(Label::pageBlocked))) << page;
    EXPECT_FALSE(page.contains("{{")) << page;
  }
}

}  // namespace
}  // namespace quillon::test
