// The strings of the trade in words.
#pragma once

#include <string>

#include "signals/Gpp/GppString.h"
#include "signals/VendorList/VendorList.h"

namespace quillon::tools {

// Lines for a reader, with names from the vendor list when there is one. What makes a string void begins with "Void:".
[[nodiscard]] std::string explanationOf(const signals::TcString& tc, const signals::VendorList* list);
[[nodiscard]] std::string explanationOf(const signals::GppString& gpp, const signals::VendorList* list);

}  // namespace quillon::tools
