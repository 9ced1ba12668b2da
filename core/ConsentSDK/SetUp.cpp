#include "core/ConsentSDK/SetUp.h"

#include <utility>

#include "core/ConsentSDK/OptionsCheck.h"
#include "core/Logger/UnitLog.h"
#include "core/Persistance/UserDefaults/StoreKeys.h"

namespace quillon {

bool SetUp::mustReset(const Session& session) const {
  if (!s_.platform.files->applicationSupportDirectory()) return false;
  const auto entries = s_.store.snapshot();
  const StoredValues stored(*entries);
  const auto cachedLanguage = stored.string(key::languageCode);
  const auto lastMode = fromRawValue<Mode>(stored.string(key::lastModeUsed, rawValue(session.mode)));
  const bool leavesDraft = lastMode == Mode::draft && session.mode == Mode::live;
  return session.options.testingMode || leavesDraft || (cachedLanguage && *cachedLanguage != session.language);
}

void SetUp::run(ConsentSDKOptions given) {
  CheckedOptions checked = checkedOptions(std::move(given));
  s_.logger.setLogLevel(checked.options.logLevel);
  for (const std::string& mistake : checked.mistakes) {
    UnitLog(s_.logger, unit::consentSDK)(LogLevel::error, mistake, "setup(options:)");
  }
  const SessionPointer session = s_.sessions.begin(std::move(checked.options));
  const bool reset = mustReset(*session);
  s_.loader.begin(session, reset);
  s_.store.transact([&](StoreTransaction& transaction) {
    if (!s_.sessions.isCurrent(*session)) return;
    if (reset) transaction.remove(key::etag);
    if (session->options.subjectId) transaction.set(key::subjectId, *session->options.subjectId);
    transaction.set(key::lastModeUsed, std::string(rawValue(session->mode)));
    transaction.set(key::isBannerPresent, false);
    ensureSubjectId(transaction, *s_.platform.random);
  });
  s_.cycle.honourSignals();
  s_.cycle.begin(session);
}

}  // namespace quillon
