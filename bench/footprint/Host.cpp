// A small host application, to be measured from outside: compiled with QUILLON_BENCH_SDK it sets the SDK up, else it
// does nothing. `footprint.sh` compares the two.
//   host SECONDS [FOLDER CDN-URL]
// Prints, in this order: its private memory in KiB when everything is ready, and how often its threads were woken in
// that many seconds after it.
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#ifdef QUILLON_BENCH_SDK
#include <sys/syscall.h>

#include "quillon/ConsentSDK.h"
#include "quillon/LinuxPlatform.h"
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

// Of all threads but this one.
long wakeUps() {
  const std::string own = std::to_string(getpid());
  long count = 0;
  for (const auto& thread : std::filesystem::directory_iterator("/proc/self/task")) {
    if (thread.path().filename() != own) count += sumOf(thread.path() / "status", "voluntary_ctxt_switches:");
  }
  return count;
}

}  // namespace

int main(int argc, char** argv) {
  const std::chrono::seconds idle(argc > 1 ? std::atoi(argv[1]) : 1);
#ifdef QUILLON_BENCH_SDK
  if (argc < 4) return 2;
  quillon::configure({.applicationId = "footprint", .dataDirectory = argv[2]});
  quillon::ConsentSDK& sdk = quillon::ConsentSDK::shared();
  // Marks in a trace of system calls.
  syscall(SYS_getppid);
  sdk.setup(
      {.appUrl = argv[3], .cdnUrl = argv[3], .tenantId = "demo-tenant", .appId = "news-reader", .locationCode = "DE"});
  syscall(SYS_getppid);
  sdk.settled().wait();
  if (sdk.getStatus() != quillon::SDKStatus::ready) return 1;
#endif
  std::this_thread::sleep_for(std::chrono::seconds(1));
  const long before = wakeUps();
  const long memory = privateMemory();
  std::this_thread::sleep_for(idle);
  std::printf("%ld %ld\n", memory, wakeUps() - before);
}
