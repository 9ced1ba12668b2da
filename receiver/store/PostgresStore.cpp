#include "receiver/store/PostgresStore.h"

#include <libpq-fe.h>

#include <array>
#include <charconv>

namespace quillon::receiver {
namespace {

constexpr std::chrono::seconds kCommitLimit{10};
constexpr std::chrono::seconds kStatementLimit{10};
constexpr std::chrono::milliseconds kAsLongAsItTakes{0};
constexpr int kPartitions = 16;
constexpr const char* kInsert = "quillon_insert";

// A column of many rows as one parameter, in PostgreSQL's array syntax.
class ArrayText {
 public:
  void text(std::string_view value) {
    separate();
    text_ += '"';
    for (const char c : value) {
      if (c == '"' || c == '\\') text_ += '\\';
      text_ += c;
    }
    text_ += '"';
  }
  void number(std::int64_t value) {
    separate();
    char digits[24];
    text_.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
  }
  std::string finish() && {
    text_ += '}';
    return std::move(text_);
  }

 private:
  void separate() {
    if (text_.size() > 1) text_ += ',';
  }
  std::string text_ = "{";
};

}  // namespace

std::expected<std::unique_ptr<DecisionStore>, StoreError> PostgresStore::open(const std::string& address) {
  auto connection = PostgresConnection::open(address);
  if (!connection) return std::unexpected(connection.error());
  std::unique_ptr<PostgresStore> store(new PostgresStore(*std::move(connection)));
  if (auto durable = store->makeDurable(); !durable) return std::unexpected(durable.error());
  if (auto made = store->makeTable(); !made) return std::unexpected(made.error());
  const std::string insert = "INSERT INTO quillon_decisions(" + std::string(kColumns) +
                             ") SELECT * FROM unnest($1::text[], $2::text[], $3::text[], $4::text[], $5::text[], "
                             "$6::bigint[], $7::text[], $8::smallint[], $9::smallint[], $10::smallint[], "
                             "$11::bigint[], $12::text[], $13::text[], $14::text[], $15::text[], $16::text[], "
                             "$17::bigint[], $18::text[], $19::text[]) ON CONFLICT DO NOTHING";
  if (auto prepared = store->connection_->prepare(kInsert, insert); !prepared) return std::unexpected(prepared.error());
  return store;
}

// A server, database or user may be configured to acknowledge before a commit is durable. Stricter settings are kept.
std::expected<void, StoreError> PostgresStore::makeDurable() {
  const auto result = query(
      "SELECT set_config('synchronous_commit', 'on', false) WHERE current_setting('synchronous_commit', true) = 'off'",
      {});
  if (!result) return std::unexpected(result.error());
  return {};
}

std::expected<void, StoreError> PostgresStore::makeTable() {
  const auto isThere = [this]() -> std::expected<bool, StoreError> {
    const auto found = query("SELECT to_regclass('quillon_decisions') IS NOT NULL", {});
    if (!found) return std::unexpected(found.error());
    return !found->rows.empty() && found->rows[0][0] == "t";
  };
  auto there = isThere();
  if (!there) return std::unexpected(there.error());
  if (*there) return addLaterColumns();

  // Byte-wise collation: faster, and the same on every machine.
  const std::string text = " text COLLATE \"C\" NOT NULL, ";
  const std::string table =
      "CREATE TABLE quillon_decisions(subject" + text + "tenant" + text + "application" + text + "kind" + text +
      "item" + text + "decided_at bigint NOT NULL, status" + text +
      "essential smallint NOT NULL, implicit smallint NOT NULL, test smallint NOT NULL, "
      "version bigint NOT NULL, compliance text NOT NULL, place text NOT NULL, "
      "device text NOT NULL, sdk_version text NOT NULL, ad_id text NOT NULL, "
      "received_at bigint NOT NULL, cause text NOT NULL DEFAULT '', history_head text NOT NULL DEFAULT '', " +
      std::string(kKey) + ") PARTITION BY HASH (subject)";
  // One statement, so it is atomic even with concurrent callers.
  std::string sql = "DO $$ BEGIN " + table + ";";
  for (int i = 0; i < kPartitions; ++i) {
    sql += " CREATE TABLE quillon_decisions_" + std::to_string(i) +
           " PARTITION OF quillon_decisions FOR VALUES WITH (MODULUS " + std::to_string(kPartitions) + ", REMAINDER " +
           std::to_string(i) + ");";
  }
  const auto made = query(sql + " END $$", {});
  if (made) return {};
  there = isThere();
  if (there && *there) return {};  // created by another instance
  return std::unexpected(made.error());
}

// Only where they are missing: the statement stops every other one for a moment.
std::expected<void, StoreError> PostgresStore::addLaterColumns() {
  for (const std::string_view column : kLaterColumns) {
    const std::string name(column);
    const auto found = query(
        "SELECT 1 FROM pg_attribute WHERE attrelid = to_regclass('quillon_decisions') AND attname = $1 AND NOT "
        "attisdropped",
        std::span(&name, 1));
    if (!found) return std::unexpected(found.error());
    if (!found->rows.empty()) continue;
    const auto added =
        query("ALTER TABLE quillon_decisions ADD COLUMN IF NOT EXISTS " + name + " text NOT NULL DEFAULT ''", {});
    if (!added) return std::unexpected(added.error());
  }
  return {};
}

std::expected<std::int64_t, StoreError> PostgresStore::add(std::span<const Upload> uploads) {
  const auto rows = rowsInOrder(uploads);
  if (rows.empty()) return 0;
  std::array<ArrayText, kColumnCount> columns;
  for (const auto& [upload, decision] : rows) {
    std::size_t index = 0;
    const auto text = [&](std::string_view value) { columns[index++].text(value); };
    const auto number = [&](std::int64_t value) { columns[index++].number(value); };
    text(upload->subject);
    text(upload->tenant);
    text(upload->application);
    text(textOf(decision->kind));
    text(decision->item);
    number(decision->decidedAt);
    text(textOf(decision->status));
    number(decision->isEssential);
    number(upload->isImplicit);
    number(upload->isTest);
    number(upload->version);
    text(upload->compliance);
    text(upload->place);
    text(upload->device);
    text(upload->sdkVersion);
    text(upload->advertisingId);
    number(upload->receivedAt);
    text(decision->cause);
    text(upload->historyHead);
  }
  std::vector<std::string> parameters;
  for (ArrayText& column : columns) parameters.push_back(std::move(column).finish());
  const auto result = connection_->executePrepared(kInsert, parameters, kCommitLimit);
  if (!result) return std::unexpected(result.error());
  return std::atoll(PQcmdTuples(result->get()));
}

std::expected<SqlStore::Result, StoreError> PostgresStore::query(std::string_view sql,
                                                                 std::span<const std::string> parameters) {
  // Statements that scan all decisions may take long.
  const bool isLong = sql.starts_with("DELETE") || sql.find("GROUP BY") != std::string_view::npos;
  auto rows = connection_->execute(std::string(sql), parameters, isLong ? kAsLongAsItTakes : kStatementLimit);
  if (!rows) return std::unexpected(rows.error());
  Result result;
  for (int row = 0; row < PQntuples(rows->get()); ++row) {
    auto& values = result.rows.emplace_back();
    for (int column = 0; column < PQnfields(rows->get()); ++column) {
      values.emplace_back(PQgetvalue(rows->get(), row, column),
                          static_cast<std::size_t>(PQgetlength(rows->get(), row, column)));
    }
  }
  result.affected = std::atoll(PQcmdTuples(rows->get()));
  return result;
}

}  // namespace quillon::receiver
