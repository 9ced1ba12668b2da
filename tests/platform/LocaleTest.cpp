// The languages of an environment.
#include <gtest/gtest.h>

#include <map>

#include "platform/linux/EnvironmentLocale.h"

namespace quillon {
namespace {

using Languages = std::vector<std::string>;

Languages languages(std::map<std::string, std::string> environment) {
  return EnvironmentLocale([&](const char* name) -> std::optional<std::string> {
           const auto found = environment.find(name);
           return found == environment.end() ? std::nullopt : std::optional(found->second);
         })
      .preferredLanguages();
}

TEST(EnvironmentLocaleTest, TurnsLocaleNamesIntoTags) {
  const std::pair<const char*, const char*> cases[] = {{"de_DE.UTF-8", "de-DE"},
                                                       {"de_DE@euro", "de-DE"},
                                                       {"zh_Hant_TW.UTF-8@x", "zh-Hant-TW"},
                                                       {"ZH_HANT_tw", "zh-Hant-TW"},
                                                       {"en-GB", "en-GB"},
                                                       {"es_419", "es-419"},
                                                       {"fil", "fil"},
                                                       {"C", "en"},
                                                       {"POSIX", "en"},
                                                       {"C.UTF-8", "en"},
                                                       {"sr_RS@latin", "sr-RS"}};
  for (const auto& [name, tag] : cases) EXPECT_EQ(languages({{"LANG", name}}), Languages{tag}) << name;
}

TEST(EnvironmentLocaleTest, TakesTheVariablesInOrderWithoutDuplicates) {
  EXPECT_EQ(languages({{"LANG", "it_IT.UTF-8"},
                       {"LC_MESSAGES", "fr_FR"},
                       {"LC_ALL", "de_DE.UTF-8"},
                       {"LANGUAGE", "de_AT:de::fr_FR"}}),
            (Languages{"de-AT", "de", "fr-FR", "de-DE", "it-IT"}));
}

TEST(EnvironmentLocaleTest, SpeaksEnglishWhenNothingUsableIsSet) {
  EXPECT_EQ(languages({}), Languages{"en"});
  for (const char* odd : {"", ":", "../../etc/passwd", "d", "1e_DE", "de_", "de__DE", "de DE", "\xc3\xa4_DE", "de\n",
                          "abcdefghi", ".UTF-8"}) {
    EXPECT_EQ(languages({{"LANGUAGE", odd}, {"LANG", odd}}), Languages{"en"}) << odd;
  }
}

TEST(EnvironmentLocaleTest, IsBounded) {
  EXPECT_EQ(languages({{"LANG", "de_DE@" + std::string(100, 'x')}}), Languages{"en"});
  std::string list;
  for (char a = 'a'; a <= 'z'; ++a) {
    for (char b = 'a'; b <= 'z'; ++b) list += std::string{a, b, ':'};
  }
  EXPECT_EQ(languages({{"LANGUAGE", list}, {"LANG", "de_DE"}}).size(), 32u);
}

}  // namespace
}  // namespace quillon
