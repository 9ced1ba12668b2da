#include "quillon/platform/Platform.h"
#if __has_include("platform/Platform.h")
#error "the SDK's own folders are in the application's include path"
#endif

int main() {
  return quillon::Platform().store ? 0 : 1;
}
