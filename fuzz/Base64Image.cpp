// An image that is handed to a toolkit has a format and a size that were found in its header and can be drawn.
#include "core/Logger/LogContext.h"
#include "fuzz/Check.h"
#include "quillon/SDKLogger.h"
#include "ui/Common/Images/ImageHeader.h"

namespace {

using namespace quillon;

// A logger whose blocks nobody reads.
struct Log : LogContext {
  void write(std::string_view) override {}
  std::string time() override { return {}; }
  bool take(LogLevel, std::string_view, std::string_view) override { return true; }
  std::int64_t configurationVersion() override { return 0; }
  std::optional<std::string> sdkVersion() override { return std::nullopt; }
  std::optional<std::string> advertisingIdentifier() override { return std::nullopt; }
  std::string subjectId() override { return {}; }

  SDKLogger logger{*this};
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static Log log;
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  (void)imageHeader(input);  // without the detour by base64, which hides from the fuzzer what it changes
  const auto image = imageFromBase64(input, log.logger);
  if (!image) return 0;
  fuzz::check(image->width >= 1 && image->height >= 1, "an image has a size");
  fuzz::check(std::int64_t{image->width} * image->height <= 25'000'000, "an image has at most 25 megapixels");
  const auto header = imageHeader(image->bytes);
  fuzz::check(header && header->format == image->format, "the format is that of the bytes");
  return 0;
}
