#include "receiver/store/SqliteStore.h"

#include <sqlite3.h>
#include <sys/stat.h>

#include <system_error>

namespace quillon::receiver {
namespace {

// How long to wait for another process that holds the file.
constexpr int kBusyMilliseconds = 5000;

using Statement = std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt*)>;

// The text must outlive the statement's run.
void bindText(sqlite3_stmt* statement, int index, std::string_view text) {
  // A null pointer would bind NULL.
  const char* data = text.data() == nullptr ? "" : text.data();
  sqlite3_bind_text64(statement, index, data, text.size(), SQLITE_STATIC, SQLITE_UTF8);
}

std::string textOfColumn(sqlite3_stmt* statement, int column) {
  const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
  return text == nullptr ? "" : std::string(text, static_cast<std::size_t>(sqlite3_column_bytes(statement, column)));
}

}  // namespace

std::expected<std::unique_ptr<DecisionStore>, StoreError> SqliteStore::open(const std::filesystem::path& folder) {
  std::error_code problem;
  std::filesystem::create_directories(folder, problem);
  if (problem) return std::unexpected(StoreError{.text = folder.string() + ": " + problem.message()});
  std::unique_ptr<SqliteStore> store(new SqliteStore);
  const std::string file = folder / "decisions.db";
  const auto before = ::umask(0077);
  const int code = sqlite3_open_v2(file.c_str(), &store->database_,
                                   SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr);
  const auto prepared = [&]() -> std::expected<void, StoreError> {
    if (code != SQLITE_OK) return std::unexpected(store->error());
    sqlite3_busy_timeout(store->database_, kBusyMilliseconds);
    // FULL: commits are durable before they are acknowledged; WAL alone does not ensure that.
    if (auto set = store->execute("PRAGMA journal_mode = WAL; PRAGMA synchronous = FULL;"); !set) return set;
    return store->execute(
        ("CREATE TABLE IF NOT EXISTS quillon_decisions("
         "subject TEXT NOT NULL, tenant TEXT NOT NULL, application TEXT NOT NULL, "
         "kind TEXT NOT NULL, item TEXT NOT NULL, decided_at INTEGER NOT NULL, status TEXT NOT NULL, "
         "essential INTEGER NOT NULL, implicit INTEGER NOT NULL, test INTEGER NOT NULL, "
         "version INTEGER NOT NULL, compliance TEXT NOT NULL, place TEXT NOT NULL, "
         "device TEXT NOT NULL, sdk_version TEXT NOT NULL, ad_id TEXT NOT NULL, "
         "received_at INTEGER NOT NULL, cause TEXT NOT NULL DEFAULT '', history_head TEXT NOT NULL DEFAULT '', " +
         std::string(kKey) + ") WITHOUT ROWID, STRICT")
            .c_str());
  }();
  ::umask(before);
  if (!prepared) return std::unexpected(prepared.error());
  if (auto added = store->addLaterColumns(); !added) return std::unexpected(added.error());
  std::string sql = "INSERT INTO quillon_decisions(" + std::string(kColumns) + ") VALUES(?";
  for (std::size_t i = 1; i < kColumnCount; ++i) sql += ",?";
  sql += ") ON CONFLICT DO NOTHING";
  if (sqlite3_prepare_v3(store->database_, sql.c_str(), -1, SQLITE_PREPARE_PERSISTENT, &store->insert_, nullptr) !=
      SQLITE_OK) {
    return std::unexpected(store->error());
  }
  return store;
}

std::expected<void, StoreError> SqliteStore::addLaterColumns() {
  for (const std::string_view column : kLaterColumns) {
    const std::string name(column);
    const auto found =
        query("SELECT 1 FROM pragma_table_info('quillon_decisions') WHERE name = $1", std::span(&name, 1));
    if (!found) return std::unexpected(found.error());
    if (!found->rows.empty()) continue;
    const std::string sql = "ALTER TABLE quillon_decisions ADD COLUMN " + name + " TEXT NOT NULL DEFAULT ''";
    if (auto added = execute(sql.c_str()); !added) return added;
  }
  return {};
}

SqliteStore::~SqliteStore() {
  sqlite3_finalize(insert_);
  sqlite3_close(database_);
}

std::expected<std::int64_t, StoreError> SqliteStore::add(std::span<const Upload> uploads) {
  if (auto begun = execute("BEGIN IMMEDIATE"); !begun) return std::unexpected(begun.error());
  std::int64_t fresh = 0;
  for (const auto& [upload, decision] : rowsInOrder(uploads)) {
    if (!insert(*upload, *decision)) {
      auto failure = error();
      (void)execute("ROLLBACK");
      return std::unexpected(std::move(failure));
    }
    fresh += sqlite3_changes(database_);
  }
  if (auto committed = execute("COMMIT"); !committed) {
    (void)execute("ROLLBACK");
    return std::unexpected(committed.error());
  }
  return fresh;
}

bool SqliteStore::insert(const Upload& upload, const Decision& decision) {
  int index = 0;
  const auto text = [&](std::string_view value) { bindText(insert_, ++index, value); };
  const auto number = [&](std::int64_t value) { sqlite3_bind_int64(insert_, ++index, value); };
  text(upload.subject);
  text(upload.tenant);
  text(upload.application);
  text(textOf(decision.kind));
  text(decision.item);
  number(decision.decidedAt);
  text(textOf(decision.status));
  number(decision.isEssential);
  number(upload.isImplicit);
  number(upload.isTest);
  number(upload.version);
  text(upload.compliance);
  text(upload.place);
  text(upload.device);
  text(upload.sdkVersion);
  text(upload.advertisingId);
  number(upload.receivedAt);
  text(decision.cause);
  text(upload.historyHead);
  const bool done = sqlite3_step(insert_) == SQLITE_DONE;
  sqlite3_reset(insert_);
  return done;
}

std::expected<SqlStore::Result, StoreError> SqliteStore::query(std::string_view sql,
                                                               std::span<const std::string> parameters) {
  sqlite3_stmt* made = nullptr;
  sqlite3_prepare_v2(database_, sql.data(), static_cast<int>(sql.size()), &made, nullptr);
  const Statement statement(made, &sqlite3_finalize);
  if (!statement) return std::unexpected(error());
  for (std::size_t i = 0; i < parameters.size(); ++i) bindText(made, static_cast<int>(i) + 1, parameters[i]);
  Result result;
  int code = SQLITE_ROW;
  while ((code = sqlite3_step(made)) == SQLITE_ROW) {
    auto& row = result.rows.emplace_back();
    for (int column = 0; column < sqlite3_column_count(made); ++column) row.push_back(textOfColumn(made, column));
  }
  if (code != SQLITE_DONE) return std::unexpected(error());
  result.affected = sqlite3_changes(database_);
  return result;
}

std::expected<void, StoreError> SqliteStore::execute(const char* sql) {
  if (sqlite3_exec(database_, sql, nullptr, nullptr, nullptr) != SQLITE_OK) return std::unexpected(error());
  return {};
}

StoreError SqliteStore::error() const {
  const int code = sqlite3_errcode(database_) & 0xff;
  const bool isRefused = code == SQLITE_CONSTRAINT || code == SQLITE_TOOBIG || code == SQLITE_MISMATCH;
  return {.kind = isRefused ? StoreError::Kind::refused : StoreError::Kind::away,
          .text = std::string("SQLite: ") + sqlite3_errmsg(database_)};
}

}  // namespace quillon::receiver
