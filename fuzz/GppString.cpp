// A GPP string, whatever it holds, is refused or is the same after a round trip, and becomes JSON.
#include "signals/Gpp/GppString.h"

#include "fuzz/Check.h"
#include "signals/Json/SignalsJson.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace quillon;
  const auto gpp = signals::decodeGppString({reinterpret_cast<const char*>(data), size});
  if (!gpp) {
    fuzz::check(!gpp.error().empty() && gpp.error().size() < 256, "an error is told in bounds");
    return 0;
  }
  const auto text = signals::encode(*gpp);
  fuzz::check(text.has_value(), "what was read can be written");
  fuzz::check(signals::decodeGppString(*text) == gpp, "a round trip changes nothing");
  std::string json;
  signals::writeJson(json, *gpp);
  fuzz::check(json.starts_with('{') && json.ends_with('}'), "the JSON is an object");
  return 0;
}
