// The QML module of the screens.
#pragma once

#include <QQmlEngine>

namespace quillon {

// Makes the module Quillon.Consent available to the engine.
void addModule(QQmlEngine& engine);

}  // namespace quillon
