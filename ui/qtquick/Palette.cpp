#include "ui/qtquick/Palette.h"

#include <algorithm>
#include <cmath>

namespace quillon {
namespace {

QColor colorOf(const Color& color) {
  return QColor::fromRgbF(static_cast<float>(color.red), static_cast<float>(color.green),
                          static_cast<float>(color.blue));
}

QColor mixed(const QColor& from, const QColor& to, double share) {
  const auto between = [share](int first, int second) {
    return static_cast<int>(std::lround(first + (second - first) * share));
  };
  return QColor(between(from.red(), to.red()), between(from.green(), to.green()), between(from.blue(), to.blue()));
}

// The first colour with sufficient contrast, or else the one with the highest contrast.
QColor clearOn(const QColor& background, double leastContrast, const std::vector<QColor>& colors) {
  const auto found =
      std::ranges::find_if(colors, [&](const QColor& color) { return contrast(color, background) >= leastContrast; });
  if (found != colors.end()) return *found;
  return *std::ranges::max_element(colors, {}, [&](const QColor& color) { return contrast(color, background); });
}

// A fill on which black or white text has the required contrast: the colour itself, else black or white, whichever is
// closer.
QColor fillFor(const QColor& color, double leastContrast) {
  const double onBlack = contrast(color, Qt::black);
  const double onWhite = contrast(color, Qt::white);
  if (std::max(onBlack, onWhite) >= leastContrast) return color;
  return onBlack < onWhite ? Qt::black : Qt::white;
}

// The variable colours of a built-in palette; all others are common.
struct Tones {
  const char* accent;
  const char* onAccent;
  const char* background;
  const char* text;
  const char* links;
  const char* footer;
};

Palette light(const Tones& tones) {
  return {tones.accent, tones.onAccent, tones.accent, tones.background, tones.text, tones.links,
          tones.footer, tones.accent,   tones.accent, "#6b7480",        "#5c3b00",  "#fff4dc"};
}

Palette dark(const Tones& tones) {
  return {tones.accent, tones.onAccent, tones.accent, tones.background, tones.text, tones.links,
          tones.footer, tones.accent,   tones.accent, "#7d8793",        "#f6dfa9",  "#3a2e13"};
}

// Uses the desktop's accent for controls; for borders only if the contrast suffices.
Palette accented(Palette palette, const Color& color) {
  const QColor accent = colorOf(color);
  palette.buttonBackground = palette.footerSelector = palette.togglePrimary = accent;
  palette.buttonText = clearOn(accent, legible, {palette.buttonText, Qt::white, Qt::black});
  if (contrast(accent, palette.bannerBackground) >= visible) palette.buttonBorder = accent;
  return palette;
}

// Inverts the lightness and keeps the hue. Avoids pure black and white, which glare in the dark.
QColor turned(const QColor& color) {
  constexpr float darkest = 0.09F;
  constexpr float lightest = 0.93F;
  float hue = 0;
  float saturation = 0;
  float lightness = 0;
  color.getHslF(&hue, &saturation, &lightness);
  return QColor::fromHslF(std::max(hue, 0.0F), saturation, darkest + (1 - lightness) * (lightest - darkest)).toRgb();
}

// Converts a palette configured for a light theme to a dark one.
Palette turned(Palette palette) {
  for (QColor Palette::* role :
       {&Palette::buttonBackground, &Palette::buttonText, &Palette::buttonBorder, &Palette::bannerBackground,
        &Palette::bannerText, &Palette::bannerLinks, &Palette::footerBackground, &Palette::footerSelector,
        &Palette::togglePrimary, &Palette::toggleSecondary, &Palette::disclaimerText, &Palette::disclaimerBackground}) {
    palette.*role = turned(palette.*role);
  }
  return palette;
}

}  // namespace

const std::vector<BuiltInPalette>& builtInPalettes() {
  static const std::vector<BuiltInPalette> palettes{
      {"Ink", light({"#1d3a5f", "#ffffff", "#ffffff", "#1c2530", "#0b5cad", "#f2f5f9"}),
       dark({"#a5c8f2", "#0d1a2a", "#151a21", "#e9eef5", "#a5c8f2", "#1d242d"})},
      {"Forest", light({"#1f5a3a", "#ffffff", "#ffffff", "#1b2620", "#17683f", "#f1f6f3"}),
       dark({"#97d6ae", "#0b2115", "#141b17", "#e8f0eb", "#97d6ae", "#1c2620"})},
      {"Plum", light({"#5a2c6d", "#ffffff", "#ffffff", "#261d2b", "#7b3697", "#f7f3f9"}),
       dark({"#dcb8ee", "#2a1234", "#1b161e", "#f1eaf4", "#dcb8ee", "#262029"})},
      {"Clay", light({"#8a3c1f", "#ffffff", "#fffdfb", "#2c211c", "#98411f", "#faf3ee"}),
       dark({"#f3b79d", "#33130a", "#1e1815", "#f5ece7", "#f3b79d", "#2a221e"})},
      {"Graphite", light({"#2b3038", "#ffffff", "#ffffff", "#1d2025", "#3a4d63", "#f3f4f6"}),
       dark({"#dde1e7", "#14171b", "#17191c", "#eceef1", "#c6d4e4", "#202327"})}};
  return palettes;
}

Palette paletteFor(const std::optional<CustomColors>& colors, std::optional<std::int64_t> number, bool isDark,
                   const std::optional<Color>& accent) {
  const auto& palettes = builtInPalettes();
  const bool isKnown = number && *number >= 1 && *number <= std::ssize(palettes);
  const BuiltInPalette& builtIn = palettes[isKnown ? static_cast<std::size_t>(*number - 1) : 0];
  if (!colors) {
    const Palette& palette = isDark ? builtIn.dark : builtIn.light;
    return accent && !number ? accented(palette, *accent) : palette;
  }
  const bool hasBackground = !colors->bannerBackground.empty();
  Palette palette = isDark && !hasBackground ? builtIn.dark : builtIn.light;
  // An empty role keeps the built-in colour.
  const auto take = [](QColor& role, const std::string& text) {
    if (!text.empty()) role = colorOf(colorFromText(text));
  };
  take(palette.buttonBackground, colors->buttonBackground);
  take(palette.buttonText, colors->buttonText);
  take(palette.buttonBorder, colors->buttonBorder);
  take(palette.bannerBackground, colors->bannerBackground);
  take(palette.bannerText, colors->bannerText);
  take(palette.bannerLinks, colors->bannerLinks);
  take(palette.footerBackground, colors->preferenceCenterFooterBackground);
  take(palette.footerSelector, colors->preferenceCenterFooterSelector);
  // Optional roles are derived from the mandatory ones.
  palette.togglePrimary = palette.buttonBackground;
  palette.toggleSecondary = mixed(palette.bannerText, palette.bannerBackground, 0.4);
  palette.disclaimerText = palette.bannerText;
  palette.disclaimerBackground = mixed(palette.bannerBackground, palette.bannerText, 0.08);
  take(palette.togglePrimary, colors->togglePrimarycolor.value_or(""));
  take(palette.toggleSecondary, colors->toggleSecondarycolor.value_or(""));
  take(palette.disclaimerText, colors->purposeDisclaimerTextColor.value_or(""));
  take(palette.disclaimerBackground, colors->purposeDisclaimerBackgroundColor.value_or(""));
  const bool isLight = contrast(palette.bannerBackground, Qt::black) > contrast(palette.bannerBackground, Qt::white);
  return isDark && isLight ? turned(palette) : palette;
}

double contrast(const QColor& first, const QColor& second) {
  const auto plain = [](const QColor& color) { return Color{color.redF(), color.greenF(), color.blueF()}; };
  return contrast(plain(first), plain(second));
}

ScreenColors::ScreenColors(const Palette& palette, bool isDark, const LeastContrast& least)
    : background(fillFor(palette.bannerBackground, least.text)),
      button(fillFor(palette.buttonBackground, least.text)),
      buttonBorder(palette.buttonBorder),
      footer(fillFor(palette.footerBackground, least.text)),
      selector(fillFor(palette.footerSelector, least.text)),
      note(fillFor(palette.disclaimerBackground, least.text)),
      scrim(0, 0, 0, isDark ? 160 : 112) {
  // The colour if it is legible on all its backgrounds, else the first legible alternative, or black or white.
  const auto legibleOn = [&](const QColor& fill, const std::vector<QColor>& colors) {
    return clearOn(fill, least.text, colors);
  };
  const auto rescued = [&](std::string_view role, const QColor& wanted, const std::vector<QColor>& backgrounds,
                           std::vector<QColor> others, double leastContrast) {
    const auto isClear = [&](const QColor& color) {
      return std::ranges::all_of(backgrounds, [&](const QColor& on) { return contrast(color, on) >= leastContrast; });
    };
    if (isClear(wanted)) return wanted;
    replaced.push_back(role);
    others.insert(others.end(), {Qt::black, Qt::white});
    const auto found = std::ranges::find_if(others, isClear);
    return found != others.end() ? *found : legibleOn(backgrounds.front(), {Qt::black, Qt::white});
  };
  text = rescued("banner_text", palette.bannerText, {background}, {}, least.text);
  // Cards are the background with a tint of the text's colour; the text must be legible on them too.
  card = mixed(background, text, 0.04);
  if (contrast(text, card) < least.text) card = background;
  hairline = mixed(background, text, 0.14);
  link = rescued("banner_links", palette.bannerLinks, {background, card}, {text}, least.text);
  buttonText = rescued("button_text", palette.buttonText, {button}, {text, background}, least.text);
  noteText = rescued("purpose_disclaimer_text", palette.disclaimerText, {note}, {text, background}, least.text);
  const QColor quiet = mixed(text, background, 0.28);
  quietText = contrast(quiet, card) >= least.text && contrast(quiet, background) >= least.text ? quiet : text;
  // A pale button is legible by its text; a switch has none.
  switchOn = clearOn(card, least.control, {palette.togglePrimary, buttonText, buttonBorder, link, text});
  switchOff = clearOn(card, least.control, {palette.toggleSecondary, quietText});
  // Colours chosen for text on a fill may be illegible without it.
  const QColor touched = mixed(background, text, 0.1);
  plainButtonText = text;
  for (const QColor& color : {buttonBorder, button, buttonText}) {
    if (contrast(color, touched) >= least.text && contrast(color, background) >= least.text) plainButtonText = color;
  }
  plainButton = mixed(background, plainButtonText, 0.1);
  if (contrast(plainButtonText, plainButton) < least.text) plainButton = background;
  plainButtonBorder =
      rescued("button_border", palette.buttonBorder, {background, card}, {plainButtonText, text}, least.control);
  footerText = legibleOn(footer, {text, background, Qt::black, Qt::white});
  selectorText = legibleOn(selector, {background, text, Qt::black, Qt::white});
  focus = legibleOn(background, {link, text});
}

std::vector<std::pair<QColor, QColor>> ScreenColors::texts() const {
  return {{text, background},
          {text, card},
          {quietText, background},
          {quietText, card},
          {link, background},
          {link, card},
          {buttonText, button},
          {plainButtonText, background},
          {plainButtonText, plainButton},
          {footerText, footer},
          {selectorText, selector},
          {noteText, note}};
}

std::vector<std::pair<QColor, QColor>> ScreenColors::controls() const {
  return {{switchOn, card}, {switchOff, card}, {focus, background}, {focus, card}, {plainButtonBorder, background}};
}

}  // namespace quillon
