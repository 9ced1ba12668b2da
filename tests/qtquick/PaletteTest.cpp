#include "ui/qtquick/Palette.h"

#include <gtest/gtest.h>

namespace quillon::test {
namespace {

// Of text on what it stands on, and of what is switched or shows the focus.
void expectClear(const ScreenColors& colors, const LeastContrast& least = {}) {
  for (const auto& [text, on] : colors.texts()) EXPECT_GE(contrast(text, on), least.text) << text.name().toStdString();
  for (const auto& [part, on] : colors.controls()) {
    EXPECT_GE(contrast(part, on), least.control) << part.name().toStdString();
  }
}

TEST(Palettes, EveryTextOfEveryBuiltInPaletteIsLegible) {
  EXPECT_NEAR(contrast(Qt::black, Qt::white), 21, 0.01);
  EXPECT_NEAR(contrast(QColor("#777777"), Qt::white), 4.48, 0.01);
  ASSERT_GE(builtInPalettes().size(), 4U);
  for (const auto& [name, light, dark] : builtInPalettes()) {
    for (const bool isDark : {false, true}) {
      SCOPED_TRACE(testing::Message() << name << isDark);
      const ScreenColors colors(isDark ? dark : light, isDark);
      expectClear(colors);
      EXPECT_TRUE(colors.replaced.empty());
    }
  }
}

TEST(Palettes, ConfiguredColoursAreTakenAsTheyAreAndMissingOnesFollowFromThem) {
  const CustomColors colors{.buttonBackground = "#102030",
                            .buttonText = "FFFFFF",
                            .buttonBorder = "#000001",
                            .bannerBackground = "#FFFFFF",
                            .bannerText = "#000000",
                            .bannerLinks = "#0000FF",
                            .preferenceCenterFooterBackground = "#EEEEEE",
                            .preferenceCenterFooterSelector = "#FFFF00"};
  const Palette palette = paletteFor(colors, 2, false);
  EXPECT_EQ(palette.buttonBackground, QColor("#102030"));
  EXPECT_EQ(palette.togglePrimary, QColor("#102030"));
  const ScreenColors screen(palette, false);
  EXPECT_EQ(screen.buttonText, QColor("#ffffff"));
  EXPECT_EQ(screen.plainButtonText, QColor("#102030")) << "white on white would be lost on a button without a fill";
  EXPECT_GE(contrast(screen.selectorText, screen.selector), legible);
  CustomColors pale = colors;
  pale.buttonBackground = "#FBE4EA";
  pale.buttonText = "#B3123F";
  pale.toggleSecondarycolor = "#FFFFFF";
  const ScreenColors switches(paletteFor(pale, 2, false), false);
  EXPECT_EQ(switches.switchOn, QColor("#b3123f")) << "as pale as a button it would be lost on its card";
  EXPECT_GE(contrast(switches.switchOff, switches.card), visible);
}

TEST(Palettes, WhateverIsConfiguredIsLegibleInBothSurroundings) {
  const char* const texts[] = {"#FFFFFF", "#000000", "#777777", "#FF0000", "#00FF00", "#0000FF",
                               "#FFFF00", "#e62d42", "#3584e4", "#c88800", "rot"};
  for (const bool isDark : {false, true}) {
    for (const LeastContrast& least : {LeastContrast(), highContrast}) {
      for (const char* ground : texts) {
        SCOPED_TRACE(testing::Message() << ground << (isDark ? ", dark " : " ") << least.text);
        for (const char* ink : texts) {
          SCOPED_TRACE(ink);
          const ScreenColors colors(paletteFor(CustomColors{.buttonBackground = ground,
                                                            .buttonText = ink,
                                                            .buttonBorder = ink,
                                                            .bannerBackground = ground,
                                                            .bannerText = ink,
                                                            .bannerLinks = ink,
                                                            .preferenceCenterFooterBackground = ground,
                                                            .preferenceCenterFooterSelector = ink},
                                               1, isDark),
                                    isDark, least);
          expectClear(colors, least);
          if (isDark && std::string_view(ground) == "#FFFFFF") {
            EXPECT_LT(contrast(colors.background, Qt::black), contrast(colors.background, Qt::white));
          }
        }
        // The desktop's accent is used where nothing else is configured.
        const QColor color(ground);
        if (!color.isValid()) continue;
        const Color accent{color.redF(), color.greenF(), color.blueF()};
        const Palette palette = paletteFor(std::nullopt, std::nullopt, isDark, accent);
        EXPECT_EQ(palette.buttonBackground, color);
        expectClear(ScreenColors(palette, isDark, least), least);
        EXPECT_NE(paletteFor(std::nullopt, 1, isDark, accent).togglePrimary, palette.togglePrimary);
        EXPECT_EQ(paletteFor(CustomColors(), std::nullopt, false, accent).buttonBackground,
                  builtInPalettes()[0].light.buttonBackground);
      }
    }
  }
}

TEST(Palettes, ANumberThatIsNoneMeansTheFirst) {
  for (const std::optional<std::int64_t> number : {std::optional<std::int64_t>(), {-1}, {99}}) {
    EXPECT_EQ(paletteFor(std::nullopt, number, false).buttonBackground, builtInPalettes()[0].light.buttonBackground);
  }
}

}  // namespace
}  // namespace quillon::test
