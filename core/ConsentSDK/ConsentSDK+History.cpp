// What was decided, for hosts.
#include <algorithm>
#include <limits>

#include "core/ConsentSDK/Asynchronous.h"
#include "core/ConsentSDK/ConsentSDKCore.h"

namespace quillon {
namespace {

template <class Core>
auto pageOfHistory(const std::shared_ptr<Core>& core, std::size_t count, std::optional<std::int64_t> before) {
  return [core, count = std::clamp<std::size_t>(count, 1, maximumJournalRecords),
          before = before.value_or(std::numeric_limits<std::int64_t>::max())]() -> Task<HistoryPage> {
    co_return core->store.history(before, count);
  };
}

}  // namespace

void ConsentSDK::getHistory(std::size_t count, std::optional<std::int64_t> before,
                            std::function<void(HistoryPage)> callback) {
  Asynchronous<HistoryPage>::callback(core_, std::move(callback), pageOfHistory(core_, count, before));
}

std::future<HistoryPage> ConsentSDK::getHistory(std::size_t count, std::optional<std::int64_t> before) {
  return Asynchronous<HistoryPage>::future(core_, pageOfHistory(core_, count, before));
}

}  // namespace quillon
