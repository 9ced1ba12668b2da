// The QML module of the screens.
#pragma once

#include <QQmlEngine>

namespace quillon {

// Lets the engine find it under the name Quillon.Consent.
void addModule(QQmlEngine& engine);

}  // namespace quillon
