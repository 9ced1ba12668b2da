#include "quillon/SDKLogger.h"

#include "core/Logger/LogContext.h"
#include "core/Text/LogText.h"

namespace quillon {
namespace {

// The unit of a source file: "UserDefaultManager" for ".../UserDefaultManager.cpp".
std::string_view unitOf(std::string_view fileName) {
  const auto name = fileName.substr(fileName.rfind('/') + 1);
  return name.substr(0, name.rfind('.'));
}

}  // namespace

void SDKLogger::log(std::string_view message, LogLevel level, std::string_view functionName, std::string_view fileName,
                    int lineNnumber) {
  const LogLevel threshold = logLevel();
  if (level < threshold || level >= LogLevel::off) return;
  if (context_.take(level, printableForLog(message), unitOf(fileName))) return;
  const bool isDetailed = threshold == LogLevel::debug;
  std::string block;
  if (isDetailed) {
    if (const auto version = context_.sdkVersion()) context_.write("SDK Version: " + escapedForLog(*version));
    const auto identifier = context_.advertisingIdentifier();
    if (identifier && !identifier->empty()) context_.write("ATT AD ID: " + escapedForLog(*identifier));
    block += "Subject Identity: " + escapedForLog(context_.subjectId()) + "\n";
  }
  block += "Configuration Version: " + std::to_string(context_.configurationVersion()) + "\n";
  block += context_.time();
  block.append(" [").append(rawValue(level)).append("]");
  if (isDetailed) {
    block.append(" [").append(fileName.substr(fileName.rfind('/') + 1)).append(":");
    block.append(std::to_string(lineNnumber)).append("] ").append(functionName).append(" - ");
  }
  context_.write(printableForLog(block.append(message)));
}

}  // namespace quillon
