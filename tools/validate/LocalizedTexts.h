// All texts of a configuration that stand in several languages.
#pragma once

#include <functional>

#include "quillon/MainConfiguration.h"
#include "tools/validate/DocumentPath.h"

namespace quillon::tools {

using VisitText = std::function<void(const DocumentPath& path, const LocalizedText& text)>;

// Calls back for every such text that is there. The labels of the screens ("i18n") are not among them.
void forEachText(const MainConfiguration& configuration, const VisitText& visit);

}  // namespace quillon::tools
