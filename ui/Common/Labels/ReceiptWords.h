// The words of a receipt's summary are labels, too.
#pragma once

#include <functional>
#include <string>

#include "platform/ReceiptSummary.h"
#include "ui/Common/Labels/Labels.h"

namespace quillon {

[[nodiscard]] ReceiptWords receiptWords(const std::function<std::string(Label)>& text);

}  // namespace quillon
