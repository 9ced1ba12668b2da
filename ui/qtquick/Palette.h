// Computes the screens' colours.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QColor>
#include <QObject>
#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "quillon/BannerConfig.h"
#include "ui/Common/Theme/Contrast.h"

namespace quillon {

// A complete set of the configurable colours.
struct Palette {
  QColor buttonBackground;
  QColor buttonText;
  QColor buttonBorder;
  QColor bannerBackground;
  QColor bannerText;
  QColor bannerLinks;
  QColor footerBackground;
  QColor footerSelector;
  QColor togglePrimary;
  QColor toggleSecondary;
  QColor disclaimerText;
  QColor disclaimerBackground;
};

struct BuiltInPalette {
  std::string_view name;
  Palette light;
  Palette dark;
};

// Indexed by palette number minus 1.
[[nodiscard]] const std::vector<BuiltInPalette>& builtInPalettes();

// The configured colours, or else the built-in palette of that number (invalid: the first). In a dark theme, configured
// light colours are inverted. The desktop's accent applies only if neither colours nor a number are configured.
[[nodiscard]] Palette paletteFor(const std::optional<CustomColors>& colors, std::optional<std::int64_t> number,
                                 bool isDark, const std::optional<Color>& accent = std::nullopt);

// For opaque colours.
[[nodiscard]] double contrast(const QColor& first, const QColor& second);

// All colours that the screens use.
struct ScreenColors {
  Q_GADGET
  QML_ANONYMOUS
  Q_PROPERTY(QColor background MEMBER background)
  Q_PROPERTY(QColor text MEMBER text)
  Q_PROPERTY(QColor quietText MEMBER quietText)
  Q_PROPERTY(QColor link MEMBER link)
  Q_PROPERTY(QColor card MEMBER card)
  Q_PROPERTY(QColor hairline MEMBER hairline)
  Q_PROPERTY(QColor button MEMBER button)
  Q_PROPERTY(QColor buttonText MEMBER buttonText)
  Q_PROPERTY(QColor buttonBorder MEMBER buttonBorder)
  Q_PROPERTY(QColor plainButton MEMBER plainButton)
  Q_PROPERTY(QColor plainButtonText MEMBER plainButtonText)
  Q_PROPERTY(QColor plainButtonBorder MEMBER plainButtonBorder)
  Q_PROPERTY(QColor footer MEMBER footer)
  Q_PROPERTY(QColor footerText MEMBER footerText)
  Q_PROPERTY(QColor selector MEMBER selector)
  Q_PROPERTY(QColor selectorText MEMBER selectorText)
  Q_PROPERTY(QColor switchOn MEMBER switchOn)
  Q_PROPERTY(QColor switchOff MEMBER switchOff)
  Q_PROPERTY(QColor note MEMBER note)
  Q_PROPERTY(QColor noteText MEMBER noteText)
  Q_PROPERTY(QColor focus MEMBER focus)
  Q_PROPERTY(QColor scrim MEMBER scrim)

 public:
  ScreenColors() = default;
  ScreenColors(const Palette& palette, bool isDark, const LeastContrast& least = {});

  // All (foreground, background) pairs: of texts, and of controls.
  std::vector<std::pair<QColor, QColor>> texts() const;
  std::vector<std::pair<QColor, QColor>> controls() const;

  // The configured roles that were replaced for insufficient contrast.
  std::vector<std::string_view> replaced;

  QColor background;
  QColor text;
  QColor quietText;
  QColor link;
  QColor card;
  QColor hairline;
  QColor button;
  QColor buttonText;
  QColor buttonBorder;
  QColor plainButton;  // of buttons without a fill: a tint of their text's colour
  QColor plainButtonText;
  QColor plainButtonBorder;
  QColor footer;
  QColor footerText;
  QColor selector;
  QColor selectorText;
  QColor switchOn;
  QColor switchOff;
  QColor note;
  QColor noteText;
  QColor focus;
  QColor scrim;
};

}  // namespace quillon
