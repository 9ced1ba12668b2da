#pragma once

#include <cstdint>
#include <expected>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

struct sqlite3;

namespace quillon::tools {

// The consent uploads that were received, in a SQLite file which several processes may have open. Safe from any thread.
class UploadStore {
 public:
  enum class Access { readWrite, readOnly };

  struct Upload {
    std::int64_t id = 0;
    std::int64_t receivedAt = 0;  // seconds since 1970-01-01T00:00:00Z
    std::int64_t status = 0;      // what it was answered with; 0: accepted
    std::string body;             // as received
  };

  // Opens the file, which readWrite creates when it is missing; ":memory:" keeps the uploads in memory.
  [[nodiscard]] static std::expected<std::unique_ptr<UploadStore>, std::string> open(const std::string& file,
                                                                                     Access access);
  ~UploadStore();

  UploadStore(const UploadStore&) = delete;
  UploadStore& operator=(const UploadStore&) = delete;

  // On disk when it returns without an error; the id is given by the store.
  [[nodiscard]] std::expected<void, std::string> add(const Upload& upload);

  // Calls visit for every upload, oldest first, until one call fails; that failure is the result.
  [[nodiscard]] std::expected<void, std::string> forEach(
      const std::function<std::expected<void, std::string>(const Upload&)>& visit) const;

 private:
  explicit UploadStore(sqlite3* database) : database_(database) {}

  sqlite3* database_;
};

}  // namespace quillon::tools
