// What the SDK's store is compared with, holding as many keys: SQLite without a checksum, a snapshot or an SDK around
// it, in the same journal mode; and LMDB, whose reads come from mapped memory. Errors are exceptions.
#pragma once

#include <lmdb.h>
#include <sqlite3.h>

#include <span>
#include <string>

#include "bench/TemporaryFolder.h"

namespace quillon::bench {

class BareSqlite {
 public:
  BareSqlite();
  ~BareSqlite();
  BareSqlite(const BareSqlite&) = delete;
  BareSqlite& operator=(const BareSqlite&) = delete;

  /// By a prepared statement.
  bool isGranted(int key);
  /// One transaction, durable when it returns, that changes the keys from 1 to `count` and appends a record for each,
  /// as long as what the SDK keeps of a decision in its history.
  void commit(int count, const char* value);

 private:
  void run(const char* statement);
  void write(int key, const char* value);
  void record();
  sqlite3_stmt* prepare(const char* text);
  void check(int code) const;

  TemporaryFolder folder_;
  sqlite3* database_ = nullptr;
  sqlite3_stmt* insert_ = nullptr;
  sqlite3_stmt* select_ = nullptr;
  sqlite3_stmt* append_ = nullptr;
};

class Lmdb {
 public:
  Lmdb();
  ~Lmdb();
  Lmdb(const Lmdb&) = delete;
  Lmdb& operator=(const Lmdb&) = delete;

  /// In a read transaction that is kept and renewed, as its documentation advises, to see the newest content.
  bool isGranted(int key);

 private:
  TemporaryFolder folder_;
  MDB_env* environment_ = nullptr;
  MDB_dbi database_ = 0;
  MDB_txn* reading_ = nullptr;
};

}  // namespace quillon::bench
