#include "tests/faults/SqliteCalls.h"

#include <dlfcn.h>
#include <sqlite3.h>

#include <atomic>

namespace quillon::test {
namespace {

std::atomic<int> left{0};  // calls until the failing one; no fault when not positive
std::atomic<bool> struck{false};
std::atomic<int> result{SQLITE_OK};

thread_local int depth = 0;  // nesting of calls into SQLite

// A running call.
class Call {
 public:
  Call() : fails_(depth++ == 0 && left > 0 && --left == 0) {
    if (fails_) struck = true;
  }
  ~Call() { --depth; }
  Call(const Call&) = delete;
  Call& operator=(const Call&) = delete;

  bool fails() const { return fails_; }
  int code(int real) const { return fails_ ? result.load() : real; }

 private:
  const bool fails_;
};

template <class Function, class... Arguments>
int pass(Function* real, Arguments... arguments) {
  const Call call;
  return call.fails() ? result.load() : real(arguments...);
}

// SQLite's original function.
template <class Function>
Function* real(const char* name) {
  return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

}  // namespace

void breakSqlite(int code, int number) {
  struck = false;
  result = code;
  left = number;
}

bool restoreSqlite() {
  left = 0;
  return struck;
}

}  // namespace quillon::test

// Interpose SQLite's functions in the whole process.
extern "C" {

using quillon::test::Call;
using quillon::test::pass;
using quillon::test::real;

int sqlite3_open_v2(const char* file, sqlite3** connection, int flags, const char* vfs) {
  static const auto next = real<decltype(sqlite3_open_v2)>("sqlite3_open_v2");
  *connection = nullptr;
  return pass(next, file, connection, flags, vfs);
}
int sqlite3_exec(sqlite3* connection, const char* sql, int (*row)(void*, int, char**, char**), void* with,
                 char** error) {
  static const auto next = real<decltype(sqlite3_exec)>("sqlite3_exec");
  return pass(next, connection, sql, row, with, error);
}
int sqlite3_prepare_v3(sqlite3* connection, const char* sql, int bytes, unsigned flags, sqlite3_stmt** statement,
                       const char** rest) {
  static const auto next = real<decltype(sqlite3_prepare_v3)>("sqlite3_prepare_v3");
  *statement = nullptr;
  return pass(next, connection, sql, bytes, flags, statement, rest);
}
int sqlite3_bind_text64(sqlite3_stmt* statement, int index, const char* text, sqlite3_uint64 bytes,
                        void (*destroy)(void*), unsigned char encoding) {
  static const auto next = real<decltype(sqlite3_bind_text64)>("sqlite3_bind_text64");
  return pass(next, statement, index, text, bytes, destroy, encoding);
}
int sqlite3_bind_int64(sqlite3_stmt* statement, int index, sqlite3_int64 number) {
  static const auto next = real<decltype(sqlite3_bind_int64)>("sqlite3_bind_int64");
  return pass(next, statement, index, number);
}
int sqlite3_step(sqlite3_stmt* statement) {
  static const auto next = real<decltype(sqlite3_step)>("sqlite3_step");
  return pass(next, statement);
}
int sqlite3_file_control(sqlite3* connection, const char* database, int operation, void* argument) {
  static const auto next = real<decltype(sqlite3_file_control)>("sqlite3_file_control");
  return pass(next, connection, database, operation, argument);
}
// Has no result code: null means out of memory.
const unsigned char* sqlite3_column_text(sqlite3_stmt* statement, int column) {
  static const auto next = real<decltype(sqlite3_column_text)>("sqlite3_column_text");
  const Call call;
  return call.fails() ? nullptr : next(statement, column);
}

}  // extern "C"
