#include "receiver/store/DecisionStore.h"
#include "receiver/store/PostgresStore.h"
#include "receiver/store/SqliteStore.h"

namespace quillon::receiver {

bool isPostgres(const std::string& address) {
  return address.starts_with("postgresql://") || address.starts_with("postgres://");
}

std::expected<std::unique_ptr<DecisionStore>, StoreError> openStore(const std::string& address) {
  return isPostgres(address) ? PostgresStore::open(address) : SqliteStore::open(address);
}

}  // namespace quillon::receiver
