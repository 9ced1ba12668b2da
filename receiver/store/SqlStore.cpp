#include "receiver/store/SqlStore.h"

#include <algorithm>
#include <charconv>
#include <tuple>

namespace quillon::receiver {
namespace {

constexpr int kRowsAtOnce = 5000;  // per expiry statement
constexpr std::string_view kOfSubject =
    " FROM quillon_decisions WHERE subject = $1 AND ($2 = '' OR tenant = $2) AND ($3 = '' OR application = $3)";

std::int64_t numberOf(const std::string& text) {
  std::int64_t number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

// The upload in a row of kColumns.
Upload uploadOf(const std::vector<std::string>& row) {
  return {.tenant = row[1],
          .application = row[2],
          .subject = row[0],
          .device = row[13],
          .isImplicit = row[8] == "1",
          .isTest = row[9] == "1",
          .version = numberOf(row[10]),
          .compliance = row[11],
          .advertisingId = row[15],
          .sdkVersion = row[14],
          .place = row[12],
          .historyHead = row[18],
          .receivedAt = numberOf(row[16]),
          .decisions = {{.kind = row[3] == textOf(Kind::purpose) ? Kind::purpose : Kind::permission,
                         .item = row[4],
                         .decidedAt = numberOf(row[5]),
                         .status = statusOf(row[6]).value_or(Status::notDetermined),
                         .isEssential = row[7] == "1",
                         .cause = row[17]}}};
}

}  // namespace

std::vector<SqlStore::Row> SqlStore::rowsInOrder(std::span<const Upload> uploads) {
  std::vector<Row> rows;
  for (const Upload& upload : uploads) {
    for (const Decision& decision : upload.decisions) rows.emplace_back(&upload, &decision);
  }
  const auto key = [](const Row& row) {
    const auto& [upload, decision] = row;
    return std::tie(upload->subject, upload->tenant, upload->application, decision->kind, decision->item,
                    decision->decidedAt, decision->status);
  };
  std::ranges::sort(rows, {}, key);
  return rows;
}

std::expected<void, StoreError> SqlStore::check() {
  const auto result = query("SELECT 1", {});
  if (!result) return std::unexpected(result.error());
  return {};
}

std::expected<std::vector<Upload>, StoreError> SqlStore::history(const Subject& subject) {
  const std::string parameters[] = {subject.id, subject.tenant, subject.application};
  const std::string sql = "SELECT " + std::string(kColumns) + std::string(kOfSubject) +
                          " ORDER BY tenant, application, decided_at, CASE status WHEN 'granted' THEN 0 ELSE 1 END, "
                          "received_at, kind, item, status";
  const auto result = query(sql, parameters);
  if (!result) return std::unexpected(result.error());
  std::vector<Upload> history;
  for (const auto& row : result->rows) history.push_back(uploadOf(row));
  return history;
}

std::expected<std::int64_t, StoreError> SqlStore::erase(const Subject& subject) {
  const std::string parameters[] = {subject.id, subject.tenant, subject.application};
  const auto result = query("DELETE" + std::string(kOfSubject), parameters);
  if (!result) return std::unexpected(result.error());
  return result->affected;
}

std::expected<std::vector<Answers>, StoreError> SqlStore::answers() {
  const auto result = query(
      "SELECT tenant, application, kind, item, place, version, decided_at / 86400 AS day, status, implicit, count(*) "
      "FROM quillon_decisions WHERE test = 0 "
      "GROUP BY tenant, application, kind, item, place, version, decided_at / 86400, status, implicit "
      "ORDER BY tenant, application, kind, item, place, version, day, status, implicit",
      {});
  if (!result) return std::unexpected(result.error());
  std::vector<Answers> answers;
  for (const auto& row : result->rows) {
    answers.push_back({row[0], row[1], row[2], row[3], row[4], numberOf(row[5]), numberOf(row[6]), row[7],
                       row[8] == "1", numberOf(row[9])});
  }
  return answers;
}

std::expected<std::int64_t, StoreError> SqlStore::expire(std::int64_t receivedBefore) {
  const std::string limit = std::to_string(receivedBefore);
  const std::string nextSql =
      "SELECT subject FROM quillon_decisions WHERE subject > $1 ORDER BY subject LIMIT 1 OFFSET " +
      std::to_string(kRowsAtOnce);
  std::int64_t removed = 0;
  for (std::string from;;) {
    const auto next = query(nextSql, std::span(&from, 1));
    if (!next) return std::unexpected(next.error());
    const bool isLast = next->rows.empty();
    const std::string to = isLast ? "" : next->rows[0][0];
    const std::string parameters[] = {from, limit, to};
    const auto part =
        isLast
            ? query("DELETE FROM quillon_decisions WHERE subject > $1 AND received_at < $2", std::span(parameters, 2))
            : query("DELETE FROM quillon_decisions WHERE subject > $1 AND received_at < $2 AND subject <= $3",
                    parameters);
    if (!part) return std::unexpected(part.error());
    removed += part->affected;
    if (isLast) return removed;
    from = to;
  }
}

}  // namespace quillon::receiver
