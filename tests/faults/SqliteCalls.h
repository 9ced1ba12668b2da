// Faults of the calls that this process makes into SQLite.
#pragma once

namespace quillon::test {

// From now on such calls are counted, in all threads, and the one of that number, counted from 1, fails with the result
// code, having done nothing. Left alone is what can only repeat an error told before, such as sqlite3_reset, and what
// SQLite itself calls.
void breakSqlite(int code, int number);
// Ends that. True when the fault has struck.
bool restoreSqlite();

}  // namespace quillon::test
