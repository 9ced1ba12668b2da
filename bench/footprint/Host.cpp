// A small host application for external measurement: compiled with QUILLON_BENCH_SDK it sets the SDK up, else it does
// nothing; with QUILLON_BENCH_SCREENS the SDK shows the preference centre over its Qt Quick window. `footprint.sh`
// compares them.
//
// host SECONDS [FOLDER CDN-URL]
//
// Prints its private memory in KiB when ready, then the number of wake-ups of its threads in the following SECONDS.
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <thread>
#ifdef QUILLON_BENCH_SDK
#include <sys/syscall.h>

#include "quillon/ConsentSDK.h"
#include "quillon/LinuxPlatform.h"
#endif
#ifdef QUILLON_BENCH_SCREENS
#include <QEventLoop>
#include <QGuiApplication>
#include <QQuickWindow>
#include <QTimer>

#include "quillon/QtQuick.h"
#endif

namespace {

long sumOf(const std::filesystem::path& file, const std::string& field) {
  std::ifstream stream(file);
  std::string word;
  long sum = 0;
  while (stream >> word) {
    long value = 0;
    if (word == field && stream >> value) sum += value;
  }
  return sum;
}

long privateMemory() {
  return sumOf("/proc/self/smaps_rollup", "Private_Clean:") + sumOf("/proc/self/smaps_rollup", "Private_Dirty:");
}

// Wake-ups of each thread but this one.
std::map<std::string, long> wakeUps() {
  std::map<std::string, long> counts;
  for (const auto& thread : std::filesystem::directory_iterator("/proc/self/task")) {
    counts[thread.path().filename()] = sumOf(thread.path() / "status", "voluntary_ctxt_switches:");
  }
  counts.erase(std::to_string(getpid()));
  return counts;
}

// A thread that ended meanwhile counts as one wake-up.
long wakeUpsSince(std::map<std::string, long> before) {
  long sum = 0;
  for (const auto& [thread, count] : wakeUps()) {
    const auto known = before.extract(thread);
    sum += count - (known ? known.mapped() : 0);
  }
  return sum + static_cast<long>(before.size());
}

void rest(std::chrono::seconds time) {
#ifdef QUILLON_BENCH_SCREENS
  QEventLoop loop;
  QTimer::singleShot(time, &loop, &QEventLoop::quit);
  loop.exec();
#else
  std::this_thread::sleep_for(time);
#endif
}

}  // namespace

int main(int argc, char** argv) {
  const std::chrono::seconds idle(argc > 1 ? std::atoi(argv[1]) : 1);
#ifdef QUILLON_BENCH_SCREENS
  const QGuiApplication application(argc, argv);
  QQuickWindow window;
  window.resize(390, 844);
  window.show();
#endif
#ifdef QUILLON_BENCH_SDK
  if (argc < 4) return 2;
#ifdef QUILLON_BENCH_SCREENS
  if (!quillon::configureQtQuick({.applicationId = "footprint", .dataDirectory = argv[2]})) return 1;
#else
  if (!quillon::configure({.applicationId = "footprint", .dataDirectory = argv[2]})) return 1;
#endif
  quillon::ConsentSDK& sdk = quillon::ConsentSDK::shared();
  // Marks a position in a trace of system calls.
  syscall(SYS_getppid);
  sdk.setup(
      {.appUrl = argv[3], .cdnUrl = argv[3], .tenantId = "demo-tenant", .appId = "news-reader", .locationCode = "DE"});
  syscall(SYS_getppid);
  sdk.settled().wait();
  if (sdk.getStatus() != quillon::SDKStatus::ready) return 1;
#ifdef QUILLON_BENCH_SCREENS
  sdk.presentPreferenceCenter();
#endif
#endif
  rest(std::chrono::seconds(1));
  const auto before = wakeUps();
  const long memory = privateMemory();
  rest(idle);
  std::printf("%ld %ld\n", memory, wakeUpsSince(before));
}
