#include "bench/OtherStores.h"

#include <charconv>
#include <stdexcept>
#include <string_view>

#include "bench/Device.h"

namespace quillon::bench {
namespace {

class KeyText {
 public:
  explicit KeyText(int key) : end_(std::to_chars(text_, text_ + sizeof text_, key).ptr) {}
  char* data() { return text_; }
  int size() const { return static_cast<int>(end_ - text_); }

 private:
  char text_[12];
  char* end_;
};

const std::string recordText(240, 'x');

void checkLmdb(int code) {
  if (code != MDB_SUCCESS) throw std::runtime_error(mdb_strerror(code));
}

}  // namespace

BareSqlite::BareSqlite() {
  check(sqlite3_open((folder_.path() / "bare.sqlite").c_str(), &database_));
  run("PRAGMA journal_mode=TRUNCATE; PRAGMA synchronous=FULL;"
      "CREATE TABLE entries(key TEXT PRIMARY KEY, value TEXT) WITHOUT ROWID;"
      "CREATE TABLE records(number INTEGER PRIMARY KEY, text TEXT)");
  append_ = prepare("INSERT INTO records(text) VALUES(?1)");
  insert_ = prepare("INSERT INTO entries VALUES(?1, ?2) ON CONFLICT(key) DO UPDATE SET value = ?2");
  select_ = prepare("SELECT value FROM entries WHERE key = ?1");
  commit(kStoredKeys, "granted");
}

BareSqlite::~BareSqlite() {
  sqlite3_finalize(insert_);
  sqlite3_finalize(select_);
  sqlite3_finalize(append_);
  sqlite3_close(database_);
}

bool BareSqlite::isGranted(int key) {
  KeyText text(key);
  sqlite3_bind_text(select_, 1, text.data(), text.size(), SQLITE_STATIC);
  const bool granted = sqlite3_step(select_) == SQLITE_ROW &&
                       std::string_view(reinterpret_cast<const char*>(sqlite3_column_text(select_, 0))) == "granted";
  sqlite3_reset(select_);
  return granted;
}

void BareSqlite::commit(int count, const char* value) {
  run("BEGIN IMMEDIATE");
  for (int key = 1; key <= count; ++key) {
    write(key, value);
    record();
  }
  run("COMMIT");
}

void BareSqlite::run(const char* statement) {
  check(sqlite3_exec(database_, statement, nullptr, nullptr, nullptr));
}

void BareSqlite::write(int key, const char* value) {
  KeyText text(key);
  sqlite3_bind_text(insert_, 1, text.data(), text.size(), SQLITE_STATIC);
  sqlite3_bind_text(insert_, 2, value, -1, SQLITE_STATIC);
  if (sqlite3_step(insert_) != SQLITE_DONE) throw std::runtime_error(sqlite3_errmsg(database_));
  sqlite3_reset(insert_);
}

void BareSqlite::record() {
  sqlite3_bind_text(append_, 1, recordText.data(), static_cast<int>(recordText.size()), SQLITE_STATIC);
  if (sqlite3_step(append_) != SQLITE_DONE) throw std::runtime_error(sqlite3_errmsg(database_));
  sqlite3_reset(append_);
}

sqlite3_stmt* BareSqlite::prepare(const char* text) {
  sqlite3_stmt* statement = nullptr;
  check(sqlite3_prepare_v2(database_, text, -1, &statement, nullptr));
  return statement;
}

void BareSqlite::check(int code) const {
  if (code != SQLITE_OK) throw std::runtime_error(sqlite3_errmsg(database_));
}

Lmdb::Lmdb() {
  checkLmdb(mdb_env_create(&environment_));
  checkLmdb(mdb_env_open(environment_, folder_.path().c_str(), 0, 0600));
  MDB_txn* writing = nullptr;
  checkLmdb(mdb_txn_begin(environment_, nullptr, 0, &writing));
  checkLmdb(mdb_dbi_open(writing, nullptr, 0, &database_));
  std::string value = "granted";
  for (int key = 1; key <= kStoredKeys; ++key) {
    KeyText text(key);
    MDB_val name{static_cast<std::size_t>(text.size()), text.data()};
    MDB_val data{value.size(), value.data()};
    checkLmdb(mdb_put(writing, database_, &name, &data, 0));
  }
  checkLmdb(mdb_txn_commit(writing));
  checkLmdb(mdb_txn_begin(environment_, nullptr, MDB_RDONLY, &reading_));
  mdb_txn_reset(reading_);
}

Lmdb::~Lmdb() {
  mdb_txn_abort(reading_);
  mdb_env_close(environment_);
}

bool Lmdb::isGranted(int key) {
  checkLmdb(mdb_txn_renew(reading_));
  KeyText text(key);
  MDB_val name{static_cast<std::size_t>(text.size()), text.data()};
  MDB_val data{};
  const bool granted = mdb_get(reading_, database_, &name, &data) == MDB_SUCCESS &&
                       std::string_view(static_cast<const char*>(data.mv_data), data.mv_size) == "granted";
  mdb_txn_reset(reading_);
  return granted;
}

}  // namespace quillon::bench
