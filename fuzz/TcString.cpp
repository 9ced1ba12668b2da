// A TC string, whatever it holds, is refused or is the same after a round trip.
#include "signals/Tcf/TcString.h"

#include "fuzz/Check.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace quillon;
  const auto tc = signals::decodeTcString({reinterpret_cast<const char*>(data), size});
  if (!tc) {
    fuzz::check(!tc.error().empty() && tc.error().size() < 256, "an error is told in bounds");
    return 0;
  }
  const auto text = signals::encode(*tc);
  fuzz::check(text.has_value(), "what was read can be written");
  fuzz::check(signals::decodeTcString(*text) == tc, "a round trip changes nothing");
  return 0;
}
