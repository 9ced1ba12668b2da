#include "tools/serve/Faults.h"

#include <boost/json.hpp>

namespace quillon::tools {
namespace {

// Sets the fault if the value is an integer from low to high.
bool take(int& fault, const boost::json::value& value, int low, int high) {
  if (!value.is_int64() || value.get_int64() < low || value.get_int64() > high) return false;
  fault = static_cast<int>(value.get_int64());
  return true;
}

}  // namespace

std::expected<Faults, std::string> Faults::changedBy(std::string_view json) const {
  boost::system::error_code error;
  const boost::json::value document = boost::json::parse(json, error);
  if (error) return std::unexpected(error.message());
  if (!document.is_object()) return std::unexpected("expected an object");

  Faults changed = *this;
  for (const auto& [key, value] : document.get_object()) {
    const bool taken =
        (key == "uploadStatus" && take(changed.uploadStatus, value, kMinUploadStatus, kMaxUploadStatus)) ||
        (key == "fail" && (take(changed.fail, value, 0, 0) || take(changed.fail, value, kMinFail, kMaxFail))) ||
        (key == "delay" && take(changed.delay, value, 0, kMaxDelay));
    if (!taken) return std::unexpected("unknown key or value out of range: " + std::string(key));
  }
  return changed;
}

std::string Faults::toJson() const {
  return boost::json::serialize(boost::json::object{{"uploadStatus", uploadStatus}, {"fail", fail}, {"delay", delay}});
}

}  // namespace quillon::tools
