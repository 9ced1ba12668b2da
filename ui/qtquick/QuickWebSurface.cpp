#include "ui/qtquick/QuickWebSurface.h"

namespace quillon {

WebSurfaceFactory& webSurfaceFactory() {
  static WebSurfaceFactory factory;
  return factory;
}

}  // namespace quillon
