// Signal defaults stored in a suite of the platform's store.
#include "core/ConsentSDK/WithoutThrowing.h"
#include "platform/KeyValueSuite.h"
#include "quillon/SignalPublisher.h"
#include "quillon/Signals.h"

namespace quillon {
namespace {

class SuiteDefaults : public SignalDefaults {
 public:
  explicit SuiteDefaults(std::shared_ptr<KeyValueSuite> suite) : suite_(std::move(suite)) {}

  bool replace(const SignalKeys& keys) override {
    return suite_->update([&](const SuiteEntries& current) { return changesTo(keys, current); }).has_value();
  }

 private:
  static SuiteChanges changesTo(const SignalKeys& keys, const SuiteEntries& current) {
    SuiteChanges changes;
    for (const auto& [key, value] : current) {
      if (isSignalKey(key)) changes.emplace(key, std::nullopt);
    }
    for (const auto& [key, value] : keys) {
      changes.insert_or_assign(key, std::visit([](const auto& typed) { return PropertyValue(typed); }, value));
    }
    return changes;
  }

  const std::shared_ptr<KeyValueSuite> suite_;
};

}  // namespace

std::shared_ptr<SignalDefaults> signalDefaultsIn(std::shared_ptr<KeyValueSuite> suite) {
  return std::make_shared<SuiteDefaults>(std::move(suite));
}

}  // namespace quillon
