// What applications ask the development server, and what they upload.
#pragma once

#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <cstdint>
#include <deque>
#include <mutex>

#include <httplib.h>

#include "tools/workbench/DraftFolder.h"

namespace quillon::tools {

// The last requests. Thread-safe.
class Traffic {
 public:
  // The folder has the names of what uploads are about, and must outlive it.
  explicit Traffic(const DraftFolder& folder) : folder_(folder) {}

  void add(const httplib::Request& request, const httplib::Response& response);

  // Those after the one of that number, oldest first: {"number", "time" (milliseconds since 1970), "method", "target",
  // "status", "message" of a refusal, "upload"}.
  [[nodiscard]] boost::json::array after(std::int64_t number) const;

 private:
  const DraftFolder& folder_;
  mutable std::mutex mutex_;
  std::deque<boost::json::object> exchanges_;
  std::int64_t count_ = 0;
};

}  // namespace quillon::tools
