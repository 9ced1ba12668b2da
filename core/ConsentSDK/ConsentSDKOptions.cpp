#include "quillon/ConsentSDKOptions.h"

#include "core/Json/RawValues.h"

namespace quillon {

QUILLON_RAW_VALUES(Mode, {Mode::draft, "draft"}, {Mode::live, "live"});

}  // namespace quillon
