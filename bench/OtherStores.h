// Stores for comparison with the SDK's, with the same number of keys: SQLite without checksum, snapshot or SDK, in the
// same journal mode; and LMDB, which reads mapped memory. Errors are exceptions.
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

  /// With a prepared statement.
  bool isGranted(int key);
  /// One transaction, durable on return, that changes the keys from 1 to `count` and appends a record per key, as long
  /// as the SDK's history record.
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

  /// In a reused and renewed read transaction, as its documentation advises, to see the newest content.
  bool isGranted(int key);

 private:
  TemporaryFolder folder_;
  MDB_env* environment_ = nullptr;
  MDB_dbi database_ = 0;
  MDB_txn* reading_ = nullptr;
};

}  // namespace quillon::bench
