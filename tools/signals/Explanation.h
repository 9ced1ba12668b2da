// Explains TC and GPP strings.
#pragma once

#include <string>

#include "signals/Gpp/GppString.h"
#include "signals/VendorList/VendorList.h"

namespace quillon::tools {

// Explanatory lines, with names from the vendor list if given. Faults that make the string void begin with "Void:".
[[nodiscard]] std::string explanationOf(const signals::TcString& tc, const signals::VendorList* list);
[[nodiscard]] std::string explanationOf(const signals::GppString& gpp, const signals::VendorList* list);

}  // namespace quillon::tools
