#pragma once

#include <span>
#include <string>

#include "receiver/store/DecisionStore.h"

namespace quillon::receiver {

// The answers as a page of HTML with plots, which loads nothing from anywhere.
[[nodiscard]] std::string statsPage(std::span<const Answers> answers);

}  // namespace quillon::receiver
