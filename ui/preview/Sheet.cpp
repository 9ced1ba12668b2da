#include "ui/preview/Sheet.h"

#include <QBuffer>
#include <QSaveFile>
#include <algorithm>
#include <cmath>
#include <expected>
#include <set>
#include <string>
#include <vector>

#include "core/Banner/BannerSelection.h"
#include "core/Configuration/ConfiguredTexts.h"
#include "core/Json/Codec.h"
#include "ui/Common/Theme/Contrast.h"
#include "ui/preview/Measure.h"
#include "ui/preview/Presenters.h"

namespace quillon::preview {
namespace {

constexpr const char* pageBegin = R"(<!DOCTYPE html>
<html lang="en"><meta charset="utf-8"><meta name="viewport" content="width=device-width">
<meta http-equiv="Content-Security-Policy" content="default-src 'none'; img-src data:; style-src 'unsafe-inline'">
<title>Screens of a configuration</title>
<style>
body { font: 14px sans-serif; margin: 24px; background: #fff; color: #1f2933 }
section { display: flex; flex-wrap: wrap; gap: 24px; align-items: start }
figure { margin: 0; width: 234px } img { width: 100%; border: 1px solid #c3cad3 }
strong { color: #a61b1b }
</style>
<h1>Screens of a configuration</h1>
)";

std::vector<std::string> languagesOf(const MainConfiguration& configuration) {
  std::set<std::string> languages;
  forEachText(configuration, NoPath(), [&languages](NoPath, const LocalizedText& text) {
    for (const auto& [language, words] : text) languages.insert(language);
  });
  if (languages.empty()) languages.insert("en");
  return {languages.begin(), languages.end()};
}

// One location per banner, "" (all others) first.
std::vector<std::string> placesOf(const MainConfiguration& configuration) {
  std::vector<std::string> places{""};
  if (!configuration.bannerConfig) return places;
  std::set<const BannerConfig*> seen{selectBanner(configuration, std::nullopt)};
  for (const auto& [place, category] : configuration.bannerConfig->locations) {
    if (place != "default" && seen.insert(selectBanner(configuration, place)).second) places.push_back(place);
  }
  return places;
}

std::vector<std::string> screensOf(const MainConfiguration& configuration) {
  std::vector<std::string> screens{"banner", "preferences"};
  if (configuration.permissions && !configuration.permissions->empty()) screens.emplace_back("permissions");
  if (configuration.purposes && !configuration.purposes->empty()) screens.emplace_back("purpose");
  if (configuration.settingPrompt) screens.emplace_back("prompt");
  return screens;
}

QString escaped(const std::string& text) {
  return QString::fromStdString(text).toHtmlEscaped();
}

QString marked(const QString& text, bool isWrong) {
  return isWrong ? "<strong>" + text + "</strong>" : text;
}

QString measuresOf(const QImage& picture, QQuickItem& screen) {
  QString measures;
  const auto texts = measuredTexts(picture, screen);
  const auto least = std::ranges::min_element(texts, {}, &MeasuredText::contrast);
  if (least != texts.end()) {
    const QString ratio = QString::number(std::floor(least->contrast * 10) / 10, 'f', 1) + ":1";
    measures += "<br>least contrast " + marked(ratio, least->contrast < legible) + " (" +
                least->text.left(32).toHtmlEscaped() + ")";
  }
  const auto answers = measuredAnswers(picture, screen);
  const bool isUnequal = !areAlike(answers);
  for (const auto& answer : answers) {
    const QString measure = QString("%1×%2, weight %3, contrast %4:1")
                                .arg(answer.width)
                                .arg(answer.height)
                                .arg(answer.weight)
                                .arg(std::floor(answer.contrast * 10) / 10);
    measures += "<br>" + escaped(answer.text) + ": " + marked(measure, isUnequal);
  }
  return measures;
}

QString figure(const std::string& screen, const QImage& picture, QQuickItem& item) {
  QByteArray png;
  QBuffer buffer(&png);
  picture.save(&buffer, "PNG");
  const QString name = escaped(screen);
  return "<figure><img alt=\"" + name + "\" src=\"data:image/png;base64," + QString::fromLatin1(png.toBase64()) +
         "\"><figcaption>" + name + measuresOf(picture, item) + "</figcaption></figure>\n";
}

// The section of one language, theme and location; null if a screen does not appear.
QString section(const View& view, const std::string& document, const std::vector<std::string>& screens,
                Presenters& presenters) {
  Preview preview(view, document, presenters.of(view.isDark, view.scale));
  if (!preview.start()) return {};
  const QString place = view.location.empty() ? QString("elsewhere") : escaped(view.location);
  QString page = "<h2>" + escaped(view.language) + ", " + place + (view.isDark ? ", dark" : "") + "</h2>\n<section>\n";
  for (const auto& screen : screens) {
    preview.present(screen);
    const QImage picture = preview.picture();
    if (picture.isNull() || !preview.screen()) return {};
    page += figure(screen, picture, *preview.screen());
  }
  return page + "</section>\n";
}

}  // namespace

std::expected<void, std::string> writeSheet(const std::string& document, const std::string& out, const View& view) {
  const auto configuration = decode<MainConfiguration>(document);
  if (!configuration) return std::unexpected("The file is no valid configuration: " + configuration.error());
  const auto languages = languagesOf(*configuration);
  const auto places = placesOf(*configuration);
  const auto screens = screensOf(*configuration);
  constexpr std::size_t mostPictures = 1000;
  if (languages.size() * places.size() * 2 * screens.size() > mostPictures) {
    return std::unexpected("There are more than 1000 pictures to draw.");
  }
  Presenters presenters;
  QString page = pageBegin;
  for (const auto& language : languages) {
    for (const auto& place : places) {
      for (const bool isDark : {false, true}) {
        View one = view;
        one.language = language;
        one.location = place;
        one.isDark = isDark;
        const QString part = section(one, document, screens, presenters);
        if (part.isNull()) return std::unexpected("A screen does not appear: " + language + " " + place);
        page += part;
      }
    }
  }
  QSaveFile file(QString::fromStdString(out));
  if (!file.open(QSaveFile::WriteOnly) || file.write(page.toUtf8()) < 0 || !file.commit()) {
    return std::unexpected("Cannot write " + out);
  }
  return {};
}

}  // namespace quillon::preview
