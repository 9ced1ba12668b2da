#include "core/ConsentSDK/ConsentSDKCore.h"

namespace quillon {

ConsentSDK::Core::Core(Platform services)
    : platform(std::move(services)),
      store(platform, logger,
            [this](std::vector<Decision> decisions) {
              others.addOwn(decisions);
              return events.announce(std::move(decisions));
            }),
      logContext(platform, store),
      logger(logContext),
      work(platform, logger),
      sessions(platform),
      events([this](Job job) { work.onMain(std::move(job)); },
             [this](std::int64_t purposeId) { return isAllowed(purposeId); }),
      foundation{platform, store, logger, work, sessions, events},
      others({foundation,
              [this] {
                loader.refreshConsentMode();
                cycle.watchAnswered();
              }}),
      notices(platform, logger),
      server(platform, store, logger, work.stopToken()),
      location(platform, store, work, server, [this] { loader.reapply(); }),
      signal(platform, store),
      consentMode(
          platform, store, logger, [this] { return signal.optOuts(); }, work.stopToken()),
      loader({foundation, server, location, consentMode, signal}),
      tradeSignals({foundation, location, loader, signal}),
      questions({foundation, location, loader, tradeSignals}),
      receipts({foundation, loader, notices}),
      uploader(
          {foundation, server, loader, [this] { cycle.startRecurringCheck(); }, [this] { cycle.watchAnswered(); }}),
      recorder({foundation, loader, uploader}),
      screens({foundation, loader, recorder, theme, notices, receipts, location}),
      cycle({foundation, loader, uploader, recorder, others, signal, [this] { return screens.explainBanner(); }}),
      setUp({foundation, loader, cycle}) {}

std::shared_ptr<ConsentSDK::Core> ConsentSDK::Core::make(Platform platform) {
  auto core = std::make_shared<Core>(std::move(platform));
  core->work.begin(core);
  core->screens.begin(std::shared_ptr<ScreenServices>(core, &core->screens));
  return core;
}

void ConsentSDK::Core::close() {
  work.close();
  store.consentTable().close();
  cycle.close();
  uploader.close();
  others.close();
}

}  // namespace quillon
