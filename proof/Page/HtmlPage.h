// A summary as one file that loads nothing, for screens and for paper.
#pragma once

#include <string>
#include <vector>

#include "proof/Page/Summary.h"

namespace quillon::proof {

// Nothing of the summary can become mark-up.
[[nodiscard]] std::string htmlPage(const std::vector<SummaryLine>& lines, const SummaryWords& words);

}  // namespace quillon::proof
