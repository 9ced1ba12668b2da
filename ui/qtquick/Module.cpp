#include "ui/qtquick/Module.h"

// Generated for the QML module. A static library's initialisers must be referenced to be linked.
void qml_register_types_Quillon_Consent();

namespace quillon {

void addModule(QQmlEngine& engine) {
  qml_register_types_Quillon_Consent();
  engine.addImportPath(":/qt/qml");
}

}  // namespace quillon
