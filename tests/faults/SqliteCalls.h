// Faults of this process's SQLite calls.
#pragma once

namespace quillon::test {

// Starts counting such calls in all threads, and makes call `number`, from 1, fail with the result code without effect.
// Exempt are calls that only repeat an earlier error, such as sqlite3_reset, and SQLite's internal calls.
void breakSqlite(int code, int number);
// Ends the fault. True when it has struck.
bool restoreSqlite();

}  // namespace quillon::test
