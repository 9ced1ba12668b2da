#include "quillon/ConsentSDK.h"
#if __has_include("core/ConsentSDK/ConsentSDKCore.h")
#error "the insides of the SDK are in the application's include path"
#endif
#if __cplusplus >= 202302L
#error "the application is compiled as more than the C++20 that it needs"
#endif

int main() {
  return quillon::ConsentSDK::shared().get(1) == quillon::ConsentStatus::granted ? 0 : 1;
}
