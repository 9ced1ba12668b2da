#include "core/Logger/LogContext.h"
#include "tools/validate/Rules.h"
#include "ui/Common/Images/ImageFromBase64.h"

namespace quillon::tools {
namespace {

// Discards the decoder's log.
class NoLog : public LogContext {
 public:
  void write(std::string_view /*block*/) override {}
  bool take(LogLevel /*level*/, std::string_view /*text*/, std::string_view /*unit*/) override { return true; }
  std::string time() override { return {}; }
  std::int64_t configurationVersion() override { return 0; }
  std::optional<std::string> sdkVersion() override { return std::nullopt; }
  std::optional<std::string> advertisingIdentifier() override { return std::nullopt; }
  std::string subjectId() override { return {}; }
};

void expectImage(const std::optional<std::string>& text, const DocumentPath& path, const Report& report) {
  if (!text || text->empty()) return;
  NoLog nowhere;
  SDKLogger logger(nowhere);
  logger.setLogLevel(LogLevel::error);
  if (imageFromBase64(*text, logger)) return;
  report(path, "is no picture that is shown: a PNG, JPEG or GIF file of ordinary size, as base64");
}

}  // namespace

void imagesAreImages(const MainConfiguration& configuration, const Report& report) {
  expectImage(configuration.logoBase64, DocumentPath().at("logo_base64"), report);
  if (const auto& purposes = configuration.purposes) {
    for (std::size_t i = 0; i < purposes->size(); ++i) {
      const auto& sdks = (*purposes)[i].sdks;
      const auto path = DocumentPath().at("purposes").at(i).at("sdks");
      for (std::size_t j = 0; sdks && j < sdks->size(); ++j) {
        expectImage((*sdks)[j].logoBase64, path.at(j).at("logo_base64"), report);
      }
    }
  }
  if (!configuration.bannerConfig) return;
  for (const auto& [name, banner] : configuration.bannerConfig->categories) {
    expectImage(banner.companyLogo, DocumentPath().at("banner_config").at("categories").at(name).at("company_logo"),
                report);
  }
}

}  // namespace quillon::tools
