#include "ui/preview/PreviewDevice.h"

#include <string>
#include <utility>
#include <vector>

#include "platform/linux/LinuxPlatform.h"
#include "platform/memory/FixedLocale.h"
#include "platform/memory/MemoryConsole.h"
#include "platform/memory/MemoryFileSystem.h"
#include "platform/memory/MemoryStore.h"
#include "platform/memory/ScriptedHttpSession.h"
#include "platform/memory/SettablePermissionSources.h"
#include "platform/memory/StaticNetworkPath.h"
#include "ui/qtquick/MainQueue.h"

namespace quillon::preview {

PreviewDevice::PreviewDevice(std::string document, std::shared_ptr<ScreenPresenter> screens)
    : platform_(linuxPlatform(
          {.postToMainQueue = [](std::function<void()> job) { MainQueue::instance().post(std::move(job)); }})) {
  platform_.http = std::make_shared<ScriptedHttpSession>([document = std::move(document)](const HttpRequest& request) {
    return HttpResponse{request.url, 200, {}, request.method == "GET" ? document : R"({"status":0})"};
  });
  platform_.console = std::make_shared<MemoryConsole>();
  platform_.store = std::make_shared<MemoryStore>();
  platform_.files = std::make_shared<MemoryFileSystem>("/preview");
  platform_.network = std::make_shared<StaticNetworkPath>();
  platform_.permissions = std::make_shared<SettablePermissionSources>();
  platform_.locale = std::make_shared<FixedLocale>(std::vector<std::string>{"en"});
  platform_.screens = std::move(screens);
}

}  // namespace quillon::preview
