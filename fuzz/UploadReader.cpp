// The body of an upload, whatever it holds, is refused in bounds or fits every store, and is the same once more.
#include "receiver/uploads/UploadReader.h"

#include <cstdint>

#include "fuzz/Check.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace quillon::receiver;
  const std::string_view body(reinterpret_cast<const char*>(data), size);
  const auto upload = readUpload(body);
  if (!upload) {
    quillon::fuzz::check(!upload.error().empty() && upload.error().size() < 256, "an error is told in bounds");
    return 0;
  }
  const auto isSound = [](const std::string& text, std::size_t most) {
    return text.size() <= most && text.find('\0') == std::string::npos;
  };
  quillon::fuzz::check(!upload->subject.empty() && isSound(upload->subject, kMaxSubjectBytes), "a subject is a key");
  quillon::fuzz::check(!upload->application.empty() && isSound(upload->application, kMaxNameBytes),
                       "an application is a key");
  quillon::fuzz::check(isSound(upload->device, kMaxDeviceBytes) && isSound(upload->advertisingId, kMaxNameBytes) &&
                           isSound(upload->compliance, kMaxNameBytes) && isSound(upload->sdkVersion, kMaxNameBytes),
                       "texts are bounded");
  quillon::fuzz::check(upload->decisions.size() <= 2 * kMaxDecisions, "decisions are bounded");
  for (const Decision& decision : upload->decisions) {
    quillon::fuzz::check(!decision.item.empty() && isSound(decision.item, kMaxNameBytes), "an item is a key");
    quillon::fuzz::check(statusOf(textOf(decision.status)) == decision.status, "a status has its text");
  }
  quillon::fuzz::check(readUpload(body) == upload, "reading is the same twice");
  return 0;
}
