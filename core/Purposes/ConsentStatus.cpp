#include "quillon/ConsentStatus.h"

#include "core/Json/RawValues.h"

namespace quillon {

QUILLON_RAW_VALUES(ConsentStatus, {ConsentStatus::granted, "granted"}, {ConsentStatus::declined, "declined"},
                   {ConsentStatus::notDetermined, "not_determined"}, {ConsentStatus::withDrawn, "withdrawn"});

}  // namespace quillon
