#include "platform/linux/LinuxPlatform.h"

#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string_view>
#include <system_error>
#include <utility>

#include "platform/linux/AsioExecutors.h"
#include "platform/linux/CurlHttpSession.h"
#include "platform/linux/EnvironmentLocale.h"
#include "platform/linux/FileCalls.h"
#include "platform/linux/FileKeyStore.h"
#include "platform/linux/HostConsole.h"
#include "platform/linux/LinuxClock.h"
#include "platform/linux/LinuxDesktopSettings.h"
#include "platform/linux/LinuxHostApplication.h"
#include "platform/linux/LinuxPrivacySignals.h"
#include "platform/linux/NetlinkPathMonitor.h"
#include "platform/linux/PermissionSources/LinuxPermissionSources.h"
#include "platform/linux/PosixFileSystem.h"
#include "platform/linux/SqliteStore.h"
#include "platform/linux/StandardConsole.h"
#include "platform/linux/SystemRandom.h"
#include "platform/linux/WorkPool.h"
#include "platform/parts/Contained.h"
#include "platform/parts/FixedAppTracking.h"
#include "platform/parts/FunctionConsentSink.h"

// Defined by the user-interface library, if linked.
extern "C" [[gnu::weak]] void quillonScreensAreLinked();
// Defined by the user-interface library, if linked; the caller owns the result.
extern "C" [[gnu::weak]] quillon::FileChooser* quillonFileChooser();
// Defined by the library of receipts, if linked; never null.
extern "C" [[gnu::weak]] quillon::ReceiptIssuer* quillonReceiptIssuer();

namespace quillon {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t workThreads = 2;

std::string environment(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? std::string() : std::string(value);
}

std::string executableName() {
  std::error_code error;
  std::string name = fs::read_symlink("/proc/self/exe", error).filename().string();
  constexpr std::string_view replaced =
      " (deleted)";  // appended by the kernel when an update replaced the running file
  if (name.ends_with(replaced)) name.resize(name.size() - replaced.size());
  return name;
}

// The identifier as a folder name; empty when it cannot be one.
std::string folderName(std::string identifier) {
  constexpr std::size_t longest = 200;
  identifier.resize(std::min(identifier.size(), longest));
  std::ranges::replace_if(
      identifier, [](char c) { return c == '/' || static_cast<unsigned char>(c) < 0x20 || c == 0x7f; }, '_');
  return identifier == "." || identifier == ".." ? std::string() : identifier;
}

std::string applicationFolder(const LinuxOptions& options) {
  for (const auto& identifier : {options.applicationId, environment("FLATPAK_ID"), executableName()}) {
    if (auto name = folderName(identifier); !name.empty()) return name;
  }
  return "quillon";
}

// Relative paths are ignored: they would depend on the working directory.
fs::path userDataDirectory() {
  fs::path data = environment("XDG_DATA_HOME");
  if (data.is_absolute()) return data;
  fs::path home = environment("HOME");
  if (!home.is_absolute()) {
    std::array<char, 16384> buffer{};
    passwd entry{};
    passwd* found = nullptr;
    if (getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found) == 0 && found != nullptr) {
      home = found->pw_dir;
    }
  }
  return home.is_absolute() ? home / ".local/share" : fs::path();
}

// Empty when the user has no home folder.
fs::path namedDataDirectory(const LinuxOptions& options) {
  if (options.dataDirectory) {
    std::error_code error;
    return fs::absolute(*options.dataDirectory, error);
  }
  const fs::path parent = userDataDirectory();
  return parent.empty() ? parent : parent / applicationFolder(options);
}

// Resolves symbolic links made by the user; the services themselves follow none.
fs::path dataDirectory(const LinuxOptions& options) {
  fs::path named = namedDataDirectory(options);
  std::error_code error;
  fs::path real = fs::weakly_canonical(named, error);
  return error ? named : real;
}

// Empty selects the default.
fs::path resourceDirectory(const LinuxOptions& options) {
  std::error_code error;
  return options.resourceDirectory ? fs::absolute(*options.resourceDirectory, error) : fs::path();
}

// Applies replaceServices. A service set to null keeps its value, since the SDK needs it.
Platform replaced(const Platform& ours, const std::function<void(Platform&)>& replaceServices) {
  Platform theirs = ours;
  bool failed = true;
  contained([&] {
    replaceServices(theirs);
    failed = false;
  });
  if (failed) return ours;
  const auto keep = [&](auto member) {
    if (theirs.*member == nullptr) theirs.*member = ours.*member;
  };
  keep(&Platform::console);
  keep(&Platform::clock);
  keep(&Platform::executors);
  keep(&Platform::files);
  keep(&Platform::store);
  keep(&Platform::http);
  keep(&Platform::network);
  keep(&Platform::locale);
  keep(&Platform::tracking);
  keep(&Platform::random);
  keep(&Platform::keys);
  keep(&Platform::permissions);
  keep(&Platform::host);
  if (theirs.signals == nullptr) theirs.signals = ours.signals;
  if (theirs.desktop == nullptr) theirs.desktop = ours.desktop;
  return theirs;
}

// A process started without standard input, output or error would give their descriptors to our files and sockets, and
// the application's output would go there.
void occupyStandardDescriptors() {
  for (;;) {
    auto nowhere = openFile("/dev/null", O_RDWR);
    if (!nowhere || nowhere.get() > STDERR_FILENO) return;
    (void)nowhere.release();
  }
}

}  // namespace

Platform linuxPlatform(const LinuxOptions& options, std::shared_ptr<ScreenPresenter> screens) {
  occupyStandardDescriptors();
  const fs::path folder = dataDirectory(options);
  const auto pool = std::make_shared<WorkPool>("quillon-work", workThreads);
  Platform platform;
  platform.console = options.log ? std::make_shared<HostConsole>(options.log) : std::make_shared<StandardConsole>();
  platform.clock = std::make_shared<LinuxClock>(pool);
  platform.executors = std::make_shared<AsioExecutors>(pool, options.postToMainQueue);
  platform.files = std::make_shared<PosixFileSystem>(folder);
  platform.store = std::make_shared<SqliteStore>(folder, pool);
  platform.http = std::make_shared<CurlHttpSession>();
  platform.network = std::make_shared<NetlinkPathMonitor>();
  platform.locale = std::make_shared<EnvironmentLocale>();
  platform.tracking = std::make_shared<FixedAppTracking>();
  platform.permissions = std::make_shared<LinuxPermissionSources>(options.applicationId);
  platform.signals = std::make_shared<LinuxPrivacySignals>();
  platform.desktop = std::make_shared<LinuxDesktopSettings>();
  platform.random = std::make_shared<SystemRandom>();
  platform.keys = std::make_shared<FileKeyStore>(platform.files);
  if (quillonFileChooser != nullptr) platform.chooser.reset(quillonFileChooser());
  if (quillonReceiptIssuer != nullptr) platform.receipts = {std::shared_ptr<void>(), quillonReceiptIssuer()};
  platform.host = std::make_shared<LinuxHostApplication>(resourceDirectory(options));
  if (options.consentSink) platform.consentSink = std::make_shared<FunctionConsentSink>(options.consentSink);
  if (options.vendorUrl) platform.vendorUrl = *options.vendorUrl;
  platform.screens = std::move(screens);
  platform.areScreensLinked = quillonScreensAreLinked != nullptr;
  return options.replaceServices ? replaced(platform, options.replaceServices) : platform;
}

}  // namespace quillon
