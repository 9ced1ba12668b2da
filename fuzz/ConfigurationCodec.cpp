// A configuration document, whatever it holds, is refused or is the same after a round trip.
#include "core/Json/Codec.h"
#include "fuzz/Check.h"
#include "quillon/MainConfiguration.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace quillon;
  const auto configuration = decode<MainConfiguration>({reinterpret_cast<const char*>(data), size});
  if (!configuration) {
    fuzz::check(!configuration.error().empty() && configuration.error().size() < 4096, "an error is told in bounds");
    return 0;
  }
  const auto again = decode<MainConfiguration>(encode(*configuration));
  fuzz::check(again.has_value(), "what was encoded can be decoded");
  fuzz::check(*again == *configuration, "a round trip changes nothing");
  return 0;
}
