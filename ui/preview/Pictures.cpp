#include "ui/preview/Pictures.h"

#include <QBuffer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>
#include <expected>
#include <iostream>
#include <optional>
#include <string>

#include "ui/preview/Measure.h"
#include "ui/preview/Presenters.h"
#include "ui/preview/Preview.h"

namespace quillon::preview {
namespace {

constexpr qint64 largestDocument = qint64{32} << 20;

struct Request {
  View view;
  qint64 bytes;
};

std::optional<Request> requestFrom(const std::string& line) {
  const QJsonObject object = QJsonDocument::fromJson(QByteArray::fromStdString(line)).object();
  const auto size = sizeFrom(object["size"].toString().toStdString());
  const qint64 bytes = object["bytes"].toInteger(-1);
  if (!size || bytes < 0 || bytes > largestDocument) return std::nullopt;
  return Request{.view = {.screen = object["screen"].toString().toStdString(),
                          .language = object["language"].toString().toStdString(),
                          .location = object["location"].toString().toStdString(),
                          .size = *size,
                          .isDark = object["dark"].toBool(),
                          .scale = std::clamp(object["scale"].toDouble(1), 0.5, 3.0)},
                 .bytes = bytes};
}

struct Drawn {
  QByteArray png;
  QJsonArray answers;
};

std::expected<Drawn, const char*> drawn(const View& view, std::string document, Presenters& presenters) {
  Preview preview(view, std::move(document), presenters.of(view.isDark, view.scale));
  if (!preview.start()) return std::unexpected("the document is no valid configuration");
  preview.present(view.screen);
  const QImage picture = preview.picture();
  if (picture.isNull() || !preview.screen()) return std::unexpected("the screen does not appear");
  Drawn drawn;
  QBuffer buffer(&drawn.png);
  // Pictures stay on this machine, so encoding speed matters, not size.
  constexpr int leastCompression = 90;
  picture.save(&buffer, "PNG", leastCompression);
  if (view.screen != "banner") return drawn;
  for (const auto& answer : measuredAnswers(picture, *preview.screen())) {
    drawn.answers.append(QJsonObject{{"text", QString::fromStdString(answer.text)},
                                     {"width", answer.width},
                                     {"height", answer.height},
                                     {"weight", answer.weight},
                                     {"contrast", answer.contrast},
                                     {"prominence", answer.prominence}});
  }
  return drawn;
}

}  // namespace

int drawPictures() {
  Presenters presenters;
  std::string line;
  while (std::getline(std::cin, line)) {
    const auto request = requestFrom(line);
    if (!request) return 1;
    std::string document(static_cast<std::size_t>(request->bytes), '\0');
    if (!std::cin.read(document.data(), request->bytes)) return 1;
    const auto result = drawn(request->view, std::move(document), presenters);
    const QJsonObject answer = result ? QJsonObject{{"bytes", result->png.size()}, {"answers", result->answers}}
                                      : QJsonObject{{"error", result.error()}};
    std::cout << QJsonDocument(answer).toJson(QJsonDocument::Compact).toStdString() << '\n';
    if (result) std::cout.write(result->png.data(), result->png.size());
    if (!std::cout.flush()) return 1;
  }
  return 0;
}

}  // namespace quillon::preview
