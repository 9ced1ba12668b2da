// What the leak checker must not report in a program with the web engine.
#pragma once

#include <QtGlobal>

namespace quillon::test {

// The engine leaves objects of its own behind when the process ends, as the fonts do. Since Qt 6.5 it looks for the
// graphics processor, and some of Qt's stay behind too.
#if QT_VERSION >= QT_VERSION_CHECK(6, 5, 0)
inline constexpr char kEngineLeaks[] =
    "leak:libQt6WebEngineCore\nleak:libfontconfig\nleak:libQt6Gui\nleak:libQt6Core\n";
#else
inline constexpr char kEngineLeaks[] = "leak:libQt6WebEngineCore\nleak:libfontconfig\n";
#endif

}  // namespace quillon::test
