// Records the requests and uploads that reach the development server.
#pragma once

#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <cstdint>
#include <deque>
#include <mutex>

#include <httplib.h>

#include "tools/workbench/DraftFolder.h"

namespace quillon::tools {

// The most recent requests. Thread-safe.
class Traffic {
 public:
  // The folder provides purpose names for uploads, and must outlive this object.
  explicit Traffic(const DraftFolder& folder) : folder_(folder) {}

  void add(const httplib::Request& request, const httplib::Response& response);

  // Requests after that number, oldest first: {"number", "time" (milliseconds since 1970), "method", "target",
  // "status", "message" of a refusal, "upload"}.
  [[nodiscard]] boost::json::array after(std::int64_t number) const;

 private:
  const DraftFolder& folder_;
  mutable std::mutex mutex_;
  std::deque<boost::json::object> exchanges_;
  std::int64_t count_ = 0;
};

}  // namespace quillon::tools
