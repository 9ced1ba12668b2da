// The appearance of the screens.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QFont>
#include <QObject>
#include <QQmlEngine>
#include <memory>

#include "platform/ScreenServices.h"
#include "quillon/QtQuick.h"
#include "ui/qtquick/Metrics.h"
#include "ui/qtquick/Palette.h"

namespace quillon {

// One per engine, set by the SDK whose screen was shown last.
class Style : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_SINGLETON
  Q_PROPERTY(quillon::ScreenColors colors READ colors NOTIFY changed)
  Q_PROPERTY(QFont heading READ heading NOTIFY changed)
  Q_PROPERTY(QFont subHeading READ subHeading NOTIFY changed)
  Q_PROPERTY(QFont body READ body NOTIFY changed)
  Q_PROPERTY(QFont label READ label NOTIFY changed)
  Q_PROPERTY(QFont tab READ tab NOTIFY changed)
  Q_PROPERTY(QFont caption READ caption NOTIFY changed)
  // In pixels: the size down to which a heading shrinks to fit a long word.
  Q_PROPERTY(int leastHeadingSize READ leastHeadingSize NOTIFY changed)
  // The factor for lengths that scale with the text.
  Q_PROPERTY(double textScale READ textScale NOTIFY changed)
  Q_PROPERTY(quillon::Metrics metrics READ metrics NOTIFY changed)
  // The texts' language.
  Q_PROPERTY(QString language READ language NOTIFY changed)
  Q_PROPERTY(ButtonShape buttonShape READ buttonShape NOTIFY changed)
  Q_PROPERTY(bool isMirrored READ isMirrored NOTIFY changed)
  Q_PROPERTY(bool isDark READ isDark NOTIFY changed)
  // Of transitions, in milliseconds; 0 with reduced motion.
  Q_PROPERTY(int duration READ duration NOTIFY changed)
  // Display time of messages, in milliseconds.
  Q_PROPERTY(int messageTime READ messageTime CONSTANT)

 public:
  enum ButtonShape { Rounded, Square, Pill, Outlined, Edgeless };
  Q_ENUM(ButtonShape)

  explicit Style(QObject* parent = nullptr);

  // The instance of an engine that has the module.
  static Style& of(QQmlEngine& engine);

  // Applies the SDK's fonts, colours and language, and the banner's settings.
  void show(const QtQuickOptions& options, ScreenServices& sdk, const std::optional<BannerConfig>& banner);

  const ScreenColors& colors() const { return colors_; }
  QFont heading() const;
  int leastHeadingSize() const;
  QFont subHeading() const { return font(fonts_.subHeading, 16, QFont::DemiBold); }
  QFont body() const { return font(fonts_.body, 15, QFont::Normal); }
  QFont label() const { return font(fonts_.body, 15, QFont::DemiBold, QFont::DemiBold); }
  QFont tab() const { return font(fonts_.headingLight, 15, QFont::DemiBold); }
  QFont caption() const;
  double textScale() const;
  Metrics metrics() const { return Metrics(textScale()); }
  const QString& language() const { return language_; }
  ButtonShape buttonShape() const { return buttonShape_; }
  bool isMirrored() const { return isMirrored_; }
  bool isDark() const;
  int duration() const { return options_.isMotionReduced || desktop().isMotionReduced ? 0 : 180; }
  int messageTime() const { return 6000; }

 Q_SIGNALS:
  void changed();

 private:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void recolour();
  void warnOfReplacedColors(SDKLogger& logger);
  QFont font(const std::optional<CustomFont>& custom, double size, int weight, int leastWeight = 1) const;

  ScreenFonts fonts_;
  void follow(std::shared_ptr<DesktopSettings> desktop);
  DesktopAppearance desktop() const { return desktop_ ? desktop_->appearance() : DesktopAppearance(); }

  QtQuickOptions options_;
  std::shared_ptr<DesktopSettings> desktop_;
  std::unique_ptr<DesktopSettingsSubscription> desktopChanges_;
  std::optional<CustomColors> customColors_;
  std::optional<std::int64_t> paletteNumber_;
  ScreenColors colors_;
  std::vector<std::string_view> replaced_;  // roles in the last warning
  QString language_;
  ButtonShape buttonShape_ = Rounded;
  bool isMirrored_ = false;
};

}  // namespace quillon
