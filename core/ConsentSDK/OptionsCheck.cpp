#include "core/ConsentSDK/OptionsCheck.h"

#include <algorithm>
#include <string_view>

#include "core/Text/Ascii.h"
#include "core/Text/LogText.h"

namespace quillon {
namespace {

constexpr std::size_t longestCode = 3;  // of a language or a state

bool isWord(std::string_view text, std::size_t shortest, std::size_t longest, bool (*isAllowed)(char)) {
  return text.size() >= shortest && text.size() <= longest && std::ranges::all_of(text, isAllowed);
}

// A base URL.
void checkAddress(std::string_view name, std::string& address, std::vector<std::string>& mistakes) {
  const std::string lower = lowerCase(address);
  const bool hasScheme = lower.starts_with("https://") || lower.starts_with("http://");
  const bool isPlain = std::ranges::all_of(address, [](char c) { return static_cast<unsigned char>(c) > 0x20; });
  if (!hasScheme || !isPlain || lower.ends_with("://")) {
    mistakes.push_back(std::string(name) + " is \"" + escapedForLog(address) +
                       "\": it should be the base address of a server, such as \"https://consent.example.com/\"");
    return;
  }
  if (!address.ends_with('/')) address += '/';
}

// A path segment.
void checkIdentifier(std::string_view name, const std::string& identifier, std::vector<std::string>& mistakes) {
  const bool isPathPart = !identifier.empty() && std::ranges::all_of(identifier, [](char c) {
    return static_cast<unsigned char>(c) > 0x20 && !std::string_view("/?#%\\").contains(c);
  });
  if (isPathPart) return;
  mistakes.push_back(std::string(name) + " is \"" + escapedForLog(identifier) +
                     "\": it should be the identifier under which the configuration is published, such as "
                     "\"news-reader\"");
}

// Accepts "de-DE" and "de_DE", of which the session uses "de".
void checkLanguage(std::optional<LanguageCode>& code, std::vector<std::string>& mistakes) {
  if (!code || code->text().empty()) return;
  const std::string language = code->text().substr(0, code->text().find_first_of("-_"));
  if (isWord(language, 2, longestCode, isLetter)) return;
  mistakes.push_back("languageCode is \"" + escapedForLog(code->text()) +
                     "\": it should be a code of ISO 639, such as \"de\"; the device's language is used");
  code.reset();
}

// "US-CA" means "US#CA".
void checkLocation(std::optional<std::string>& code, std::vector<std::string>& mistakes) {
  if (code && code->empty()) code.reset();
  if (!code) return;
  const auto separator = code->find_first_of("#-_");
  const std::string country = upperCase(code->substr(0, separator));
  const std::string state = separator == std::string::npos ? std::string() : upperCase(code->substr(separator + 1));
  const auto isCharacter = [](char c) { return isLetter(c) || isDigit(c); };
  const bool isState = separator == std::string::npos || isWord(state, 1, longestCode, isCharacter);
  if (isWord(country, 2, 2, isLetter) && isState) {
    code = state.empty() ? country : country + "#" + state;
    return;
  }
  mistakes.push_back("locationCode is \"" + escapedForLog(*code) +
                     "\": it should be a country of ISO 3166, \"#\" and a state or not, such as \"US#CA\" or \"DE\"");
}

}  // namespace

CheckedOptions checkedOptions(ConsentSDKOptions options) {
  std::vector<std::string> mistakes;
  checkAddress("appUrl", options.appUrl, mistakes);
  checkAddress("cdnUrl", options.cdnUrl, mistakes);
  checkIdentifier("tenantId", options.tenantId, mistakes);
  checkIdentifier("appId", options.appId, mistakes);
  checkLanguage(options.languageCode, mistakes);
  checkLocation(options.locationCode, mistakes);
  if (options.readyWithin && *options.readyWithin < std::chrono::milliseconds(0)) {
    mistakes.push_back("readyWithin is " + std::to_string(options.readyWithin->count()) +
                       " ms: it should be how long the application waits for the first load, such as 500 ms");
    options.readyWithin.reset();
  }
  if (options.webviewConfig) {
    const auto isBlank = [](const std::string& domain) { return trimmed(domain).empty(); };
    if (std::ranges::any_of(options.webviewConfig->allowedDomains, isBlank)) {
      mistakes.push_back(
          "webviewConfig.allowedDomains has an empty entry, which allows nothing: it should be a host such as "
          "\"example.com\"");
    }
  }
  return {std::move(options), std::move(mistakes)};
}

}  // namespace quillon
