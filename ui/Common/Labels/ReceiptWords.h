// Takes the words of a receipt's summary from the labels.
#pragma once

#include <functional>
#include <string>

#include "platform/ReceiptSummary.h"
#include "ui/Common/Labels/Labels.h"

namespace quillon {

[[nodiscard]] ReceiptWords receiptWords(const std::function<std::string(Label)>& text);

}  // namespace quillon
