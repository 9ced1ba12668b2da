#include "receiver/uploads/UploadReader.h"

#include <boost/json.hpp>
#include <exception>

namespace quillon::receiver {
namespace {

namespace json = boost::json;

constexpr std::size_t kMaxDepth = 16;
constexpr std::size_t kFirstBlock = 16 << 10;
// Seconds; about three thousand years either way, so that arithmetic does not overflow.
constexpr std::int64_t kFarthestTime = 100'000'000'000;

// The members of one object, taken by name. The first error is kept; later results are unused.
class Members {
 public:
  Members(const json::object& object, std::string path, std::string& complaint)
      : object_(object), path_(std::move(path)), complaint_(complaint) {}

  std::string text(const char* name, std::size_t maxBytes, bool mayBeEmpty = true) const {
    const json::value* value = member(name);
    if (value == nullptr) return {};
    const json::string* text = value->if_string();
    if (text == nullptr) return complain(name, "expected a text"), std::string();
    if (text->size() > maxBytes) return complain(name, "is too long"), std::string();
    if (text->empty() && !mayBeEmpty) return complain(name, "is empty"), std::string();
    // Some stores end texts at a zero byte, others reject it.
    if (text->find('\0') != json::string::npos) return complain(name, "holds a zero byte"), std::string();
    return std::string(*text);
  }

  std::string optionalText(const char* name, std::size_t maxBytes) const {
    return object_.contains(name) ? text(name, maxBytes) : std::string();
  }

  std::int64_t integer(const char* name) const {
    const json::value* value = member(name);
    if (value == nullptr) return 0;
    if (!value->is_int64()) return complain(name, "expected an integer"), 0;
    return value->get_int64();
  }

  std::int64_t time(const char* name) const {
    const std::int64_t seconds = integer(name);
    if (seconds < -kFarthestTime || seconds > kFarthestTime) complain(name, "is out of range");
    return seconds;
  }

  bool truth(const char* name) const {
    const json::value* value = member(name);
    if (value == nullptr) return false;
    if (!value->is_bool()) return complain(name, "expected true or false"), false;
    return value->get_bool();
  }

  Status status(const char* name) const {
    const auto status = statusOf(text(name, kMaxNameBytes));
    if (!status) complain(name, "is not a consent status");
    return status.value_or(Status::notDetermined);
  }

  template <class Read>
  void forEach(const char* name, Read read) const {
    const json::value* value = member(name);
    if (value == nullptr) return;
    const json::array* array = value->if_array();
    if (array == nullptr) return complain(name, "expected an array");
    if (array->size() > kMaxDecisions) return complain(name, "has too many entries");
    for (std::size_t i = 0; i < array->size() && complaint_.empty(); ++i) {
      const std::string place = std::string(name) + "[" + std::to_string(i) + "]";
      const json::object* object = (*array)[i].if_object();
      if (object == nullptr) return complain(place, "expected an object");
      read(Members(*object, path_ + place + ".", complaint_));
    }
  }

 private:
  const json::value* member(const char* name) const {
    const json::value* value = object_.if_contains(name);
    if (value == nullptr) complain(name, "is missing");
    return value;
  }

  void complain(std::string_view name, std::string_view what) const {
    if (complaint_.empty()) complaint_ = path_ + std::string(name) + ": " + std::string(what);
  }

  const json::object& object_;
  const std::string path_;
  std::string& complaint_;
};

std::expected<Upload, std::string> uploadOf(const json::object& object) {
  std::string complaint;
  const Members members(object, "", complaint);
  Upload upload;
  upload.subject = members.text("uuid", kMaxSubjectBytes, false);
  upload.application = members.text("app_uuid", kMaxNameBytes, false);
  upload.device = members.text("device", kMaxDeviceBytes);
  upload.isImplicit = members.truth("implicit_consent");
  upload.version = members.integer("version");
  upload.isTest = members.truth("is_test_mode");
  upload.advertisingId = members.text("ad_id", kMaxNameBytes);
  upload.compliance = members.text("banner_info", kMaxNameBytes);
  upload.sdkVersion = members.optionalText("sdk_version", kMaxNameBytes);
  members.text("platform", kMaxNameBytes);
  members.forEach("purpose_consents", [&](const Members& entry) {
    upload.decisions.push_back({.kind = Kind::purpose,
                                .item = std::to_string(entry.integer("purpose_id")),
                                .decidedAt = entry.time("timestamp"),
                                .status = entry.status("consent_status"),
                                .isEssential = entry.truth("is_essential"),
                                .cause = entry.optionalText("cause", kMaxNameBytes)});
  });
  members.forEach("permissions", [&](const Members& entry) {
    upload.decisions.push_back({.kind = Kind::permission,
                                .item = entry.text("permission", kMaxNameBytes, false),
                                .decidedAt = entry.time("timestamp"),
                                .status = entry.status("consent_status")});
  });
  if (!complaint.empty()) return std::unexpected(complaint);
  return upload;
}

}  // namespace

std::expected<Upload, std::string> readUpload(std::string_view body) try {
  if (body.size() > kMaxBodyBytes) return std::unexpected("the body is too large");
  unsigned char first[kFirstBlock];
  json::monotonic_resource memory(first, sizeof first);
  boost::system::error_code error;
  const json::value document = json::parse(body, error, &memory, {.max_depth = kMaxDepth});
  if (error) return std::unexpected("is not JSON: " + error.message());
  const json::object* object = document.if_object();
  if (object == nullptr) return std::unexpected("expected an object");
  return uploadOf(*object);
} catch (const std::exception& failure) {
  return std::unexpected(std::string("cannot be read: ") + failure.what());
}

}  // namespace quillon::receiver
