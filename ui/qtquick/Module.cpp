#include "ui/qtquick/Module.h"

// Of the QML module, made by the build. In a static library they must be named to be linked.
void qml_register_types_Quillon_Consent();

namespace quillon {

void addModule(QQmlEngine& engine) {
  qml_register_types_Quillon_Consent();
  engine.addImportPath(":/qt/qml");
}

}  // namespace quillon
