#pragma once

#include <cstdint>
#include <expected>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

struct sqlite3;

namespace quillon::tools {

// The received uploads, in an SQLite file that several processes may open. Thread-safe.
class UploadStore {
 public:
  enum class Access { readWrite, readOnly };

  struct Upload {
    std::int64_t id = 0;
    std::int64_t receivedAt = 0;  // seconds since 1970-01-01T00:00:00Z
    std::int64_t status = 0;      // of the response; 0: accepted
    std::string body;             // as received
  };

  // Opens the file; readWrite creates it if missing. ":memory:" keeps the uploads in memory.
  [[nodiscard]] static std::expected<std::unique_ptr<UploadStore>, std::string> open(const std::string& file,
                                                                                     Access access);
  ~UploadStore();

  UploadStore(const UploadStore&) = delete;
  UploadStore& operator=(const UploadStore&) = delete;

  // Durable on success; the store assigns the id.
  [[nodiscard]] std::expected<void, std::string> add(const Upload& upload);

  // Calls `visit` for every upload, oldest first, until a call fails; returns that failure.
  [[nodiscard]] std::expected<void, std::string> forEach(
      const std::function<std::expected<void, std::string>(const Upload&)>& visit) const;

 private:
  explicit UploadStore(sqlite3* database) : database_(database) {}

  sqlite3* database_;
};

}  // namespace quillon::tools
