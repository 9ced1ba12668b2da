#include "ui/qtquick/Style.h"

#include <QEvent>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QLocale>
#include <QPalette>
#include <QScreen>
#include <QtMath>
#include <algorithm>
#include <utility>

#include "core/Logger/UnitLog.h"

namespace quillon {
namespace {

bool isApplicationDark() {
  const QPalette palette = QGuiApplication::palette();
  return palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness();
}

// Desktops scale text by a higher density, which fonts measured in points follow.
double textScaleByDensity() {
  const QScreen* screen = QGuiApplication::primaryScreen();
  constexpr double ordinaryDensity = 96;
  return screen ? screen->logicalDotsPerInchY() / ordinaryDensity : 1;
}

Style::ButtonShape shapeOf(const std::optional<BannerConfig>& banner) {
  switch (banner ? banner->buttonShape.value_or(ButtonShape::rounded) : ButtonShape::rounded) {
    case ButtonShape::square:
      return Style::Square;
    case ButtonShape::pill:
      return Style::Pill;
    case ButtonShape::outlined:
      return Style::Outlined;
    case ButtonShape::edgeless:
      return Style::Edgeless;
    case ButtonShape::rounded:
      break;
  }
  return Style::Rounded;
}

}  // namespace

Style::Style(QObject* parent) : QObject(parent) {
  recolour();
  qGuiApp->installEventFilter(this);
}

void Style::recolour() {
  const DesktopAppearance wanted = desktop();
  const LeastContrast least = wanted.isContrastHigh ? highContrast : LeastContrast();
  colors_ = ScreenColors(paletteFor(customColors_, paletteNumber_, isDark(), wanted.accent), isDark(), least);
}

bool Style::isDark() const {
  return options_.isDark.value_or(isApplicationDark() || desktop().prefersDark);
}

// Warns once per palette.
void Style::warnOfReplacedColors(SDKLogger& logger) {
  // Judges the colours as configured, not as converted for a dark theme.
  auto replaced = ScreenColors(paletteFor(customColors_, paletteNumber_, false), false).replaced;
  if (std::exchange(replaced_, std::move(replaced)) == replaced_ || replaced_.empty()) return;
  std::string roles;
  for (const std::string_view role : replaced_) roles.append(roles.empty() ? "" : ", ").append(role);
  UnitLog(logger, "Style")(
      LogLevel::warning,
      "The palette has colours that nobody can tell from what they stand on, others are used: " + roles, "show()");
}

// The desktop may switch to a dark theme while a screen is shown.
bool Style::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::ApplicationPaletteChange && !options_.isDark) {
    recolour();
    Q_EMIT changed();
  }
  return QObject::eventFilter(watched, event);
}

Style& Style::of(QQmlEngine& engine) {
  // The type ID differs between engines.
  return *engine.singletonInstance<Style*>(qmlTypeId("Quillon.Consent", 1, 0, "Style"));
}

void Style::show(const QtQuickOptions& options, ScreenServices& sdk, const std::optional<BannerConfig>& banner) {
  options_ = options;
  follow(sdk.desktop());
  customColors_ = sdk.colors();
  paletteNumber_ = banner ? banner->paletteTheme : std::nullopt;
  recolour();
  warnOfReplacedColors(sdk.logger());
  fonts_ = sdk.fonts();
  buttonShape_ = shapeOf(banner);
  language_ = QString::fromStdString(sdk.language());
  isMirrored_ = QLocale(language_).textDirection() == Qt::RightToLeft;
  Q_EMIT changed();
}

// The desktop's settings may change while a screen is shown.
void Style::follow(std::shared_ptr<DesktopSettings> desktop) {
  if (desktop == desktop_) return;
  desktopChanges_.reset();
  desktop_ = std::move(desktop);
  if (!desktop_) return;
  desktopChanges_ = desktop_->observe([this] {
    const auto adapt = [this] {
      recolour();
      Q_EMIT changed();
    };
    QMetaObject::invokeMethod(this, adapt, Qt::QueuedConnection);
  });
}

// Uses the desktop's scale if Qt does not know one.
double Style::textScale() const {
  constexpr double smallest = 0.5;
  constexpr double largest = 3;
  const double byDensity = textScaleByDensity();
  return std::clamp(options_.textScale.value_or(byDensity == 1 ? desktop().textScale : byDensity), smallest, largest);
}

QFont Style::font(const std::optional<CustomFont>& custom, double size, int weight, int leastWeight) const {
  QFont font = QGuiApplication::font();
  if (custom && !custom->name.empty()) font.setFamilies({QString::fromStdString(custom->name), font.family()});
  if (custom && custom->size > 0) size = std::min(custom->size, 64.0);
  if (custom) weight = std::clamp(custom->type, leastWeight, 1000);
  font.setPixelSize(std::max(1, qRound(size * textScale())));
  font.setWeight(static_cast<QFont::Weight>(weight));
  return font;
}

// Headings grow less than the text, so that long words fit on small screens, but stay larger than it.
QFont Style::heading() const {
  QFont large = font(fonts_.heading, 20, QFont::DemiBold);
  if (textScale() <= 1) return large;
  const int grown = qRound(large.pixelSize() * (1 + (textScale() - 1) * 0.6) / textScale());
  large.setPixelSize(std::max(grown, std::min(large.pixelSize(), leastHeadingSize())));
  return large;
}

int Style::leastHeadingSize() const {
  return qCeil(subHeading().pixelSize() * 1.05);
}

QFont Style::caption() const {
  QFont small = body();
  small.setPixelSize(std::max(1, qRound(small.pixelSize() * 13.0 / 15)));
  return small;
}

}  // namespace quillon
