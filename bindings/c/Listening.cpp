// Listeners and gates: each is a handle, freed by quillon_end().
#include <utility>

#include "bindings/c/Values.h"

struct quillon_listening {
  quillon::Listening listening;
};

using namespace quillon;
using namespace quillon::c;

namespace {

quillon_listening* handle(Listening listening) {
  return new quillon_listening{std::move(listening)};
}

}  // namespace

extern "C" {

quillon_listening* quillon_listen_to_consents(void (*callback)(const quillon_decision* change, void* context),
                                              void* context) {
  return guarded([&]() -> quillon_listening* {
    if (callback == nullptr) return nullptr;
    return handle(sdk().listenToConsents([=](const Decision& change) {
      const quillon_decision record = inC(change);
      callback(&record, context);
    }));
  });
}

quillon_listening* quillon_listen_to_screens(void (*callback)(const char* screen, int32_t is_shown, void* context),
                                             void* context) {
  return guarded([&]() -> quillon_listening* {
    if (callback == nullptr) return nullptr;
    return handle(sdk().listenToScreens(
        [=](const ScreenEvent& event) { callback(word(event.screen), event.isShown ? 1 : 0, context); }));
  });
}

quillon_listening* quillon_listen_to_uploads(void (*callback)(int32_t is_accepted, const char* message, void* context),
                                             void* context) {
  return guarded([&]() -> quillon_listening* {
    if (callback == nullptr) return nullptr;
    return handle(sdk().listenToUploads(
        [=](const UploadEvent& event) { callback(event.isAccepted ? 1 : 0, event.message.c_str(), context); }));
  });
}

quillon_listening* quillon_listen_to_banner_due(void (*callback)(const quillon_banner_explanation* explanation,
                                                                 void* context),
                                                void* context) {
  return guarded([&]() -> quillon_listening* {
    if (callback == nullptr) return nullptr;
    return handle(sdk().listenToBannerDue([=](const BannerExplanation& explanation) {
      const quillon_banner_explanation record = inC(explanation);
      callback(&record, context);
    }));
  });
}

quillon_listening* quillon_while_allowed(int64_t purpose_id, void (*start)(void* context), void (*stop)(void* context),
                                         void* context) {
  return guarded([&]() -> quillon_listening* {
    if (start == nullptr || stop == nullptr) return nullptr;
    return handle(sdk().whileAllowed(purpose_id, [=] { start(context); }, [=] { stop(context); }));
  });
}

void quillon_end(quillon_listening* listening) {
  guarded([&] { delete listening; });
}

}  // extern "C"
