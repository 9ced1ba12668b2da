#include <chrono>

#include "receiver/officer/OfficerCommands.h"
#include "receiver/officer/StoreSession.h"

namespace quillon::receiver {
namespace {

int expire(DecisionStore& store, int days) {
  const auto before = std::chrono::system_clock::now() - std::chrono::hours(24) * days;
  const auto removed =
      store.expire(std::chrono::duration_cast<std::chrono::seconds>(before.time_since_epoch()).count());
  if (!removed) return failed(removed.error().text);
  std::printf("%lld decisions removed\n", static_cast<long long>(*removed));
  return 0;
}

}  // namespace

void addExpireCommand(CLI::App& app, int& exitCode) {
  auto* const command = app.add_subcommand("expire", "Remove the decisions that were received long ago");
  struct Options {
    std::string store;
    int days = 0;
  };
  const auto options = std::make_shared<Options>();
  command->add_option("--store", options->store, "Folder, or postgresql://…")->required();
  command->add_option("--older-than", options->days, "Days; also what is still in force goes")
      ->check(CLI::Range(1, 36'500))
      ->required();
  command->callback([options, &exitCode] {
    exitCode = withStore(options->store, [&](DecisionStore& store) { return expire(store, options->days); });
  });
}

}  // namespace quillon::receiver
