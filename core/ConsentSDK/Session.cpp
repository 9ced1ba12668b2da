#include "core/ConsentSDK/Session.h"

#include <algorithm>
#include <utility>

#include "core/Network/EndPoints.h"

namespace quillon {

std::string Session::configurationAddress() const {
  return options.cdnUrl + GetCDNEndPoint(options, mode, language, false).pathURL;
}

bool Session::isOfSameApplication(const Session& other) const {
  return options.cdnUrl == other.options.cdnUrl && options.tenantId == other.options.tenantId &&
         options.appId == other.options.appId && mode == other.mode;
}

SessionPointer Sessions::current() const {
  const std::scoped_lock lock(mutex_);
  return current_;
}

bool Sessions::isCurrent(const Session& session) const {
  const std::scoped_lock lock(mutex_);
  return current_ && current_->generation == session.generation;
}

SessionPointer Sessions::begin(ConsentSDKOptions options) {
  const Mode mode = options.mode.value_or(options.testingMode ? Mode::draft : Mode::live);
  std::string language = options.languageCode ? options.languageCode->text() : std::string();
  language.erase(std::min(language.find_first_of("-_"), language.size()));
  if (language.empty()) language = locale_.currentLanguageCode();
  const std::scoped_lock lock(mutex_);
  const std::uint64_t generation = current_ ? current_->generation + 1 : 1;
  current_ = std::make_shared<const Session>(Session{std::move(options), mode, std::move(language), generation});
  return current_;
}

std::string Sessions::language() const {
  const auto session = current();
  return session ? session->language : locale_.currentLanguageCode();
}

DecisionContext Sessions::context(GivenType given) const {
  const auto session = current();
  return {.givenType = given,
          .time = wholeSeconds(platform_.clock->now()),
          .language = session ? session->language : locale_.currentLanguageCode(),
          .application = session ? session->options.appId : std::string()};
}

}  // namespace quillon
